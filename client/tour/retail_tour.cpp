#include <QWidget>
#include <cstdlib>

#include "tour_steps.h"
#include "tours.h"

namespace kalvor {

using namespace tour;

void addLogInTour(TourDriver& driver)
{
  driver.step("log-in window", dialogIs("TfLogin"), [] {
    TourDriver::dialog()->repaint();
    std::_Exit(0);
  });
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
