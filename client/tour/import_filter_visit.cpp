#include <QDir>
#include <QFile>
#include <QTableWidget>

#include "import/windows/import_filters_form.h"
#include "registry/windows/form_host.h"
#include "session/error_log.h"
#include "visits.h"
#include "widgets/string_grid.h"

namespace kalvor::tour {

namespace {

QString sampleFile()
{
  return QDir(clientDocumentFolder()).filePath(QStringLiteral("invoices.csv"));
}

// Good documents, and one of each that the demo company cannot take.
void writeSample()
{
  QFile file(sampleFile());
  if (file.open(QIODevice::WriteOnly))
    file.write(QStringLiteral("Номер;Дата;Клиент;Артикул;Наименование;Количество;Цена\r\n"
                              "9001;05.10.2026;%1;%3;Първи ред;2;10,50\r\n9001;05.10.2026;%1;%4;Втори ред;1;4,20\r\n"
                              "9002;31.02.2026;%2;%3;Невъзможна дата;3;10,50\r\n"
                              "9003;06.10.2026;няма такъв;%3;Непознат клиент;1;10,50\r\n"
                              "9004;06.10.2026;%2;няма;Непознат артикул;1;10,50\r\n9004;06.10.2026;%2;%4;Грешно число;две;4,20\r\n"
                              "9005;07.10.2026;%2;%4;Добър ред;5;4,20\r\n")
                   .arg(QStringLiteral("10001"), QStringLiteral("10002"), QStringLiteral("110001"), QStringLiteral("110002"))
                   .toUtf8());
}

TfEdImportFilters* filtersForm()
{
  return qobject_cast<TfEdImportFilters*>(activeFormWidget());
}

}  // namespace

void visitImportFilters(TourDriver& driver)
{
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.step("a sample file", {}, [] {
    writeSample();
    QDir::setCurrent(clientDocumentFolder());
  });
  driver.step("the filters", formIs("TfBrSaleInvoice"),
              [&driver] { driver.key(Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier); });
  driver.step("of the invoices", formIs("TfEdImportFilters"), [] {});
  driver.picture("import-filters-empty");
  driver.step("another filter", {}, [&driver] { driver.key(Qt::Key_End, Qt::ControlModifier); });
  driver.step("choose a file", {}, [&driver] { driver.key(Qt::Key_F7); });
  driver.step("the file", dialogIs("QFileDialog"), [&driver] {
    driver.type(QStringLiteral("invoices.csv"));
    driver.key(Qt::Key_Return);
  });
  driver.expect("its columns are shown", [] { return !TourDriver::dialog() && filtersForm() && filtersForm()->tblSample->columnCount() == 8; });
  driver.picture("import-filters-fields");
  driver.step("to the fields", {}, [&driver] { driver.key(Qt::Key_F4); });
  driver.step("a column for the first field", [] { return TourDriver::focus()->objectName() == u"grdMapping"; }, [&driver] {
    driver.type(QStringLiteral("7"));
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Right);
    driver.key(Qt::Key_Right);
    driver.type(QStringLiteral("ФАК"));
    driver.key(Qt::Key_Return);
  });
  driver.expect("the text has it", [] {
    return filtersForm() && filtersForm()->filterText().text().contains(QStringLiteral("7=1|0|N_SubDocument_Code||ФАК"));
  });
  driver.picture("import-filters-mapped");
  driver.step("a lookup", [] { return TourDriver::focus()->objectName() == u"grdMapping"; }, [&driver] {
    auto* grid = qobject_cast<TStringGrid*>(TourDriver::focus());
    driver.key(Qt::Key_Home, Qt::ControlModifier);
    for (int i = 0; i < 60 && grid->Cells(7, grid->Row()).isEmpty(); ++i)
      driver.key(Qt::Key_Down);
    for (int i = 0; i < 7; ++i)
      driver.key(Qt::Key_Right);
    driver.key(Qt::Key_Down, Qt::AltModifier);
  });
  driver.step("the lookup's window", dialogIs("TfImportLookup"), [] {});
  driver.picture("import-filters-lookup");
  driver.step("leave it", dialogIs("TfImportLookup"), [&driver] { driver.key(Qt::Key_Escape); });
  driver.step("options", formIs("TfEdImportFilters"), [&driver] { driver.key(Qt::Key_2, Qt::AltModifier); });
  driver.picture("import-filters-options");
  driver.step("text", formIs("TfEdImportFilters"), [&driver] { driver.key(Qt::Key_3, Qt::AltModifier); });
  tabTo(driver, QStringLiteral("memText"));
  driver.step("a slip", {}, [&driver] {
    driver.key(Qt::Key_Home, Qt::ControlModifier);
    driver.type(QStringLiteral("[OPTIONS]FIRST_ROWS=2[##OPTIONS]"));
    driver.key(Qt::Key_Return);
  });
  driver.picture("import-filters-text");
  driver.step("take it back", formIs("TfEdImportFilters"), [&driver] {
    driver.key(Qt::Key_F4);
    driver.key(Qt::Key_Z, Qt::ControlModifier);
  });
  driver.expect("as it was", [] { return filtersForm() && !filtersForm()->cdsMaster()->IsEditing(); });
  driver.step("try it", formIs("TfEdImportFilters"), [&driver] { driver.key(Qt::Key_F9); });
  driver.expect("five documents", [] { return filtersForm() && filtersForm()->tblDocuments->rowCount() == 5; });
  driver.picture("import-filters-trial");
  driver.step("the fourth", {}, [&driver] {
    for (int i = 0; i < 3; ++i)
      driver.key(Qt::Key_Down);
  });
  driver.picture("import-filters-trial-failed");
  driver.step("close the filters", formIs("TfEdImportFilters"), [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
  driver.step("import", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_I, Qt::ControlModifier); });
  driver.step("its choice", dialogIs("TfSelectImportFilter"), [] {});
  driver.picture("import-filters-choice");
  tabTo(driver, QStringLiteral("btnFilters"));
  driver.step("to the filters from here", dialogIs("TfSelectImportFilter"), [&driver] { driver.key(Qt::Key_Space); });
  driver.step("the filters again", formIs("TfEdImportFilters"), [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
}

}  // namespace kalvor::tour
