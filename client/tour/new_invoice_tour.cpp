#include <QWidget>

#include "tour_steps.h"
#include "tours.h"

namespace kalvor {

using namespace tour;

namespace {

// A new line; part of an item's name drops down what matches and Enter takes the first, a whole code finds itself.
void addLine(TourDriver& driver, int number, const QString& text, bool byName, const QString& quantity)
{
  driver.step("new line", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_N, Qt::ControlModifier); });
  gotoColumn(driver, QStringLiteral("Code"));
  driver.step(QStringLiteral("item ") + text, formIs(invoiceCard), [&driver, text] { driver.type(text); });
  if (byName)
    driver.step("matches", [] { return TourDriver::visibleWidget("lookupMatches") != nullptr; }, [] {});
  if (number == 1)
    driver.picture("new-invoice-matches");
  driver.step("take it", {}, [&driver] { driver.key(Qt::Key_Return); });
  driver.expect(QStringLiteral("item %1 has its price").arg(number), [] {
    return !TourDriver::dialog() && activeFormIs(invoiceCard) && invoiceLines()->FieldByName(u"UnitPrice")->AsFloat() > 0;
  });
  gotoColumn(driver, QStringLiteral("Quantity"));
  driver.step("quantity", formIs(invoiceCard), [&driver, quantity] {
    driver.type(quantity);
    driver.key(Qt::Key_Return);
  });
}

}  // namespace

void addNewInvoiceTour(TourDriver& driver)
{
  logIn(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.step("new invoice", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_N, Qt::ControlModifier); });
  driver.step("its type", formIs(invoiceCard), [&driver] {
    driver.type(QStringLiteral("INV-PLV"));
    driver.key(Qt::Key_Tab);
  });
  tabTo(driver, QStringLiteral("edtN_Contragent_Code"));
  driver.step("customer", formIs(invoiceCard), [&driver] {
    driver.type(QStringLiteral("10298"));
    driver.key(Qt::Key_Tab);
  });
  driver.expect("the customer is there", [] {
    return !TourDriver::dialog() && activeFormIs(invoiceCard) && !activeMaster()->FieldByName(u"N_Contragent_Name")->IsNull();
  });
  driver.step("to the lines", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_F4); });
  addLine(driver, 1, QStringLiteral("шоколад"), true, QStringLiteral("24"));
  addLine(driver, 2, QStringLiteral("230004"), false, QStringLiteral("3"));
  addLine(driver, 3, QStringLiteral("домати"), true, QStringLiteral("7,5"));
  addLine(driver, 4, QStringLiteral("240030"), false, QStringLiteral("10"));
  addLine(driver, 5, QStringLiteral("ъглошлайф"), true, QStringLiteral("1"));
  driver.picture("new-invoice");
  driver.step("save", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_S, Qt::ControlModifier); });
  driver.expect("the invoice of five lines is saved", [] {
    return activeMaster() && activeMaster()->State() == DataSetState::Browse && activeMaster()->ChangeCount() == 0 &&
           invoiceLines()->RecordCount() == 5 && !activeMaster()->FieldByName(u"DocumentNo")->AsString().isEmpty();
  });
  driver.picture("new-invoice-saved");
}

}  // namespace kalvor
