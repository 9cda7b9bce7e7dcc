#include "tour_steps.h"
#include "tours.h"

namespace kalvor {

using namespace tour;

namespace {

// Filter and file by keys; then the run begins.
void chooseImport(TourDriver& driver, const char* picture)
{
  driver.step("import", windowIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_I, Qt::ControlModifier); });
  driver.step("the filters", dialogIs("TfSelectImportFilter"), [] {});
  driver.picture(QLatin1String(picture));
  driver.step("the first filter", dialogIs("TfSelectImportFilter"), [&driver] { driver.key(Qt::Key_Return); });
  driver.step("the file", dialogIs("QFileDialog"),
              [&driver] { driver.type(QStringLiteral("journal.txt")); });
  driver.picture("import-file");
  driver.step("take it", dialogIs("QFileDialog"), [&driver] { driver.key(Qt::Key_Return); });
}

}  // namespace

void addImportTour(TourDriver& driver)
{
  logIn(driver);
  chooseInNavigator(driver, QStringLiteral("Фактури за продажба"));
  driver.step("the empty list", windowIs("TfBrSaleInvoice"), [] {});
  chooseImport(driver, "import-filters");
  driver.expect("a document without its customer is asked about", dialogIs("QMessageBox"));
  driver.picture("import-question");
  driver.step("yes to all", dialogIs("QMessageBox"), [&driver] {
    driver.key(Qt::Key_Tab);
    driver.key(Qt::Key_Space);
  });
  driver.expect("the end is told", dialogIs("QMessageBox"));
  driver.picture("import-errors");
  driver.step("understood", dialogIs("QMessageBox"), [&driver] { driver.key(Qt::Key_Return); });
  driver.step("close the run's window", {}, [&driver] { driver.key(Qt::Key_Escape); });
  driver.expect("the list shows what came", [] {
    return activeFormIs("TfBrSaleInvoice") && activeMaster() && !TourDriver::dialog() && activeMaster()->RecordCount() > 20;
  });
  driver.picture("import-list");
}

}  // namespace kalvor
