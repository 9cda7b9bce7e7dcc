#include <QApplication>
#include <QClipboard>

#include "visits.h"
#include "widgets/db_grid.h"

namespace kalvor::tour {

// A part of an item's name typed into a new line drops down what matches; rows of a spreadsheet are shown before they
// are taken.
void typeAheadAndPaste(TourDriver& driver)
{
  driver.step("edit", formIs("TfEdSaleInvoice"), [&driver] {
    driver.key(Qt::Key_F2);
    if (!qobject_cast<TDBGrid*>(TourDriver::focus()))
      driver.key(Qt::Key_F4);
  });
  driver.step("new line", [] { return qobject_cast<TDBGrid*>(TourDriver::focus()) != nullptr; },
              [&driver] { driver.key(Qt::Key_N, Qt::ControlModifier); });
  gotoColumn(driver, "Code");
  driver.step("typing", {}, [&driver] { driver.type(QStringLiteral("па")); });
  driver.step("matches", [] { return TourDriver::visibleWidget("lookupMatches") != nullptr; },
              [&driver] { driver.key(Qt::Key_Down); });
  driver.picture("lookup-matches");
  driver.step("take it", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.picture("lookup-taken");
  driver.step("copied rows", {}, [&driver] {
    QApplication::clipboard()->setText(QStringLiteral("Описание\tКоличество\tЕд. цена\nМонтаж\t2\t35,50\n"
                                                      "Транспорт до обект\tдва\t40,00\nПрофилактика\t1\t60\n"));
    driver.key(Qt::Key_V, Qt::ControlModifier);
  });
  driver.step("preview", dialogIs("TfPastePreview"), [] {});
  driver.picture("paste-preview");
  driver.step("paste", dialogIs("TfPastePreview"), [&driver] { driver.key(Qt::Key_Return); });
  driver.step("all lines", [] { return !TourDriver::dialog() && qobject_cast<TDBGrid*>(TourDriver::focus()); }, [&driver] {
    gotoColumnNow(driver, QStringLiteral("TotalVAT"));
    driver.key(Qt::Key_A, Qt::ControlModifier);
  });
  driver.picture("footer-sums");
  driver.step("give it up", formIs("TfEdSaleInvoice"), [] { activeForm()->CancelChanges(); });
}

}  // namespace kalvor::tour
