#include <QApplication>
#include <QComboBox>
#include <QTreeWidget>
#include <cstdlib>

#include "data/client_dataset.h"
#include "registry/form_interfaces.h"
#include "registry/windows/form_host.h"
#include "tours.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

IBaseIntf* activeForm()
{
  return dynamic_cast<IBaseIntf*>(activeFormWidget());
}

TClientDataSet* activeMaster()
{
  IBaseIntf* form = activeForm();
  return form ? form->GetCdsMaster() : nullptr;
}

bool activeFormIs(const char* className)
{
  const QWidget* form = activeFormWidget();
  return form && !TourDriver::dialog() && QLatin1String(form->metaObject()->className()).endsWith(QLatin1String(className));
}

TourDriver::Condition formIs(const char* className)
{
  return [className] { return activeFormIs(className) && activeMaster() && activeMaster()->Active(); };
}

TourDriver::Condition dialogIs(const char* className)
{
  return [className] {
    const QWidget* dialog = TourDriver::dialog();
    return dialog && QLatin1String(dialog->metaObject()->className()).endsWith(QLatin1String(className));
  };
}

void logIn(TourDriver& driver)
{
  // At the very first start nothing is remembered: the company and the object are chosen, the user is there.
  driver.step("log-in dialog", dialogIs("TfLogin"), [&driver] {
    auto* company = TourDriver::dialog()->findChild<QComboBox*>(QStringLiteral("cbCompany"));
    if (company->currentIndex() >= 0)
      return;
    for (int i = 0; i < 3; ++i)
      driver.key(Qt::Key_Backtab, Qt::ShiftModifier);
    for (int i = 0; i < 2; ++i) {
      driver.key(Qt::Key_Down);
      driver.key(Qt::Key_Tab);
    }
    driver.key(Qt::Key_Tab);
  });
  driver.picture("log-in");
  driver.step("password", dialogIs("TfLogin"), [&driver] {
    driver.type("demo");
    driver.key(Qt::Key_Return);
  });
  driver.step("main window", [] { return TourDriver::visibleWidget("navigator") && !TourDriver::dialog(); }, [] {});
}

// Through the navigator, by the keyboard alone.
void openForm(TourDriver& driver, const QString& caption, const char* className)
{
  driver.step("navigator", {}, [&driver] { driver.key(Qt::Key_M, Qt::ControlModifier); });
  driver.step(QStringLiteral("choose ") + caption, [] { return qobject_cast<QTreeWidget*>(TourDriver::focus()); },
              [&driver, caption] {
                auto* tree = qobject_cast<QTreeWidget*>(TourDriver::focus());
                driver.key(Qt::Key_Home);
                for (int i = 0; i < 100 && tree->currentItem() && tree->currentItem()->text(0) != caption; ++i)
                  driver.key(Qt::Key_Down);
                driver.key(Qt::Key_Return);
              });
  driver.step(QStringLiteral("opened ") + caption, formIs(className), [] {});
}

// Moves the grid's current cell to a column, key by key.
void gotoColumn(TourDriver& driver, const QString& field)
{
  driver.step(QStringLiteral("column ") + field,
              [] { return qobject_cast<TDBGrid*>(TourDriver::focus()) != nullptr; },
              [&driver, field] {
                auto* grid = qobject_cast<TDBGrid*>(TourDriver::focus());
                driver.key(Qt::Key_Home);
                for (int i = 0; i < 60 && grid->selectedField() && grid->selectedField()->FieldName() != field; ++i)
                  driver.key(Qt::Key_Right);
              });
}

void filterCurrentColumn(TourDriver& driver, const QString& criterion, const char* picture)
{
  driver.step("field filter", {}, [&driver] { driver.key(Qt::Key_F3); });
  driver.step(QStringLiteral("criterion ") + criterion, dialogIs("TfFilterFields"),
              [&driver, criterion] { driver.type(criterion); });
  driver.picture(picture);
  driver.step("apply", dialogIs("TfFilterFields"), [&driver] { driver.key(Qt::Key_Return); });
}

void changeQuantityAndSave(TourDriver& driver, const QString& quantity, const char* pictures)
{
  const QString prefix = QLatin1String(pictures);
  driver.step("to the lines", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_F4); });
  gotoColumn(driver, "Quantity");
  driver.step("new quantity", {}, [&driver, quantity] {
    driver.type(quantity);
    driver.key(Qt::Key_Return);
  });
  driver.picture(prefix + QStringLiteral("-changed"));
  driver.step("save", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_S, Qt::ControlModifier); });
  driver.expect("the invoice is saved", [] {
    return activeMaster() && activeMaster()->State() == DataSetState::Browse && activeMaster()->ChangeCount() == 0;
  });
  driver.picture(prefix + QStringLiteral("-saved"));
}

// Rows of the table filter: the list's filter is there, a date comes from the calendar.
void composeTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("a further row", dialogIs("TfTableFilter"), [&driver] {
    driver.key(Qt::Key_Down);
    driver.type(QStringLiteral("дата"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral(">="));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.picture("table-filter-calendar");
  driver.step("a date", {}, [&driver] {
    driver.key(Qt::Key_Up);
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Down);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.picture("table-filter-fields");
  driver.step("close the list", {}, [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("end the edit", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("give up", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
}

void chooseInTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("a contractor", dialogIs("TfTableFilter"), [&driver] {
    driver.type(QStringLiteral("код на к"));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_F4);
  });
  driver.picture("table-filter-lookup");
  driver.step("choose", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.picture("table-filter-chosen");
  driver.step("give up", dialogIs("TfTableFilter"), [&driver] { driver.key(Qt::Key_Escape); });
}

void applyTableFilter(TourDriver& driver)
{
  driver.step("table filter", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F3, Qt::ControlModifier); });
  driver.step("two rows", dialogIs("TfTableFilter"), [&driver] {
    driver.type(QStringLiteral("наим"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("с"));
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("*ООД"));
    driver.key(Qt::Key_Down);
    driver.type(QStringLiteral("неак"));
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Tab);
    driver.type(QStringLiteral("н"));
  });
  driver.picture("table-filter");
  driver.step("apply", dialogIs("TfTableFilter"), [&driver] {
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Return);
  });
  driver.expect("only companies are left", [] {
    TClientDataSet* master = activeMaster();
    return master && !TourDriver::dialog() && !master->IsEmpty() &&
           master->FieldByName(u"Name")->AsString().endsWith(QStringLiteral("ООД"));
  });
  driver.picture("table-filtered");
}

void sortAndSearch(TourDriver& driver)
{
  driver.step("sort", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F5, Qt::ShiftModifier); });
  driver.step("choose fields", dialogIs("TfSort"), [&driver] {
    driver.type(QStringLiteral("град"));
    driver.key(Qt::Key_Space);
    driver.type(QStringLiteral("наим"));
    driver.key(Qt::Key_Space);
    driver.key(Qt::Key_S, Qt::AltModifier);
    driver.key(Qt::Key_Tab);
  });
  driver.picture("sort");
  driver.step("apply", dialogIs("TfSort"), [&driver] {
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Return);
  });
  driver.picture("sorted");
  gotoColumn(driver, "Name");
  driver.step("search", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_F, Qt::ControlModifier); });
  driver.step("text", [] { return TourDriver::visibleWidget(QStringLiteral("TfSearch")) != nullptr; }, [&driver] {
    driver.type(QStringLiteral("ви"));
    driver.key(Qt::Key_Return);
  });
  driver.picture("search");
  driver.step("close the search", {}, [&driver] { driver.key(Qt::Key_Escape); });
}

}  // namespace

void addLogInTour(TourDriver& driver)
{
  driver.step("log-in window", dialogIs("TfLogin"), [] {
    TourDriver::dialog()->repaint();
    std::_Exit(0);
  });
}

void addDemoTour(TourDriver& driver)
{
  logIn(driver);
  driver.picture("main-window");
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.picture("sales-list");
  gotoColumn(driver, "N_Contragent_Name");
  filterCurrentColumn(driver, QStringLiteral("ЕООД"), "typed-filter");
  driver.expect("the filter is on", [] { return activeMaster() && !activeMaster()->IsEmpty() && !TourDriver::dialog(); });
  driver.picture("filtered-list");
  composeTableFilter(driver);
  driver.step("open the card", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs("TfEdSaleInvoice"), [] {});
  driver.picture("invoice");
  chooseInTableFilter(driver);
  changeQuantityAndSave(driver, "7", "invoice");
  driver.step("close the card", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
  openForm(driver, QStringLiteral("Контрагенти"), "TfBrContragent");
  driver.picture("contractors");
  applyTableFilter(driver);
  sortAndSearch(driver);
  driver.step("open the contractor", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("contractor", formIs("TfEdContragent"), [] {});
  driver.picture("contractor");
  openForm(driver, QStringLiteral("Артикули"), "TfBrItem");
  driver.picture("items");
  driver.step("open the item", formIs("TfBrItem"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("item", formIs("TfEdItem"), [] {});
  driver.picture("item");
}

void addRetailTour(TourDriver& driver)
{
  logIn(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.step("all records", formIs("TfBrSaleInvoice"), [] { activeForm()->LastRecord(); });
  driver.expect("66 invoices are listed", [] { return activeMaster()->RecordCount() == 66; });
  driver.picture("retail-list");
  gotoColumn(driver, "DocumentNo");
  filterCurrentColumn(driver, "C*", "retail-criterion");
  driver.expect("only cancellations are left", [] {
    TClientDataSet* master = activeMaster();
    if (!master || TourDriver::dialog() || master->RecordCount() == 0 || master->RecordCount() > 60)
      return false;
    const TField* number = master->FieldByName(u"DocumentNo");
    for (qsizetype row = 0; row < master->RecordCount(); ++row)
      if (!number->ValueAt(row).toString().startsWith(u'C'))
        return false;
    return true;
  });
  driver.picture("retail-cancellations");
  driver.step("remove the filter", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_F3, Qt::ShiftModifier); });
  gotoColumn(driver, "DocumentNo");
  filterCurrentColumn(driver, "536365", "retail-one");
  driver.expect("invoice 536365 is found", [] {
    return activeMaster() && !TourDriver::dialog() && activeMaster()->RecordCount() == 1 &&
           activeMaster()->FieldByName(u"DocumentNo")->AsString() == QLatin1String("536365");
  });
  driver.step("open it", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs("TfEdSaleInvoice"), [] {});
  driver.picture("retail-invoice");
  changeQuantityAndSave(driver, "11", "retail-invoice");
}

}  // namespace kalvor
