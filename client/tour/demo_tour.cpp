#include "tours.h"
#include "visits.h"

namespace kalvor {

using namespace tour;

void addDemoTour(TourDriver& driver)
{
  logIn(driver);
  driver.picture("main-window");
  visitSettings(driver);
  visitPassword(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.picture("sales-list");
  arrangeColumns(driver, "TfBrSaleInvoice");
  gotoColumn(driver, "N_Contragent_Name");
  filterCurrentColumn(driver, QStringLiteral("ЕООД"), "typed-filter");
  driver.expect("the filter is on", [] { return activeMaster() && !activeMaster()->IsEmpty() && !TourDriver::dialog(); });
  driver.picture("filtered-list");
  composeTableFilter(driver);
  driver.step("open the card", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs("TfEdSaleInvoice"), [] {});
  driver.picture("invoice");
  visitCalendar(driver);
  chooseInTableFilter(driver);
  changeQuantityAndSave(driver, "7", "invoice");
  typeAheadAndPaste(driver);
  driver.step("close the card", formIs("TfEdSaleInvoice"), [&driver] { driver.key(Qt::Key_W, Qt::ControlModifier); });
  openForm(driver, QStringLiteral("Контрагенти"), "TfBrContragent");
  driver.picture("contractors");
  applyTableFilter(driver);
  sortAndSearch(driver);
  exportContractors(driver);
  driver.step("open the contractor", formIs("TfBrContragent"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("contractor", formIs("TfEdContragent"), [] {});
  driver.picture("contractor");
  openForm(driver, QStringLiteral("Артикули"), "TfBrItem");
  driver.picture("items");
  driver.step("open the item", formIs("TfBrItem"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("item", formIs("TfEdItem"), [] {});
  driver.picture("item");
  visitStoredSettings(driver);
  visitItemGroups(driver);
  visitEditGrids(driver);
  openForm(driver, QStringLiteral("Редове на фактури"), "TfBrSaleLine");
  driver.picture("sale-lines");
  visitAdministration(driver);
  visitImportFilters(driver);
}

void addImportFiltersTour(TourDriver& driver)
{
  logIn(driver);
  visitImportFilters(driver);
}

}  // namespace kalvor
