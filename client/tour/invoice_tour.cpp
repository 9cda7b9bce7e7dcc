#include "tour_steps.h"
#include "tours.h"
#include "widgets/db_grid.h"

namespace kalvor {

using namespace tour;

namespace {

double lineValue(const char16_t* field) { return invoiceLines()->FieldByName(QStringView(field))->AsFloat(); }

bool nowShown() { return !TourDriver::dialog() && activeFormIs(invoiceCard); }

// Types into a column of the current line and goes on with Enter.
void changeLine(TourDriver& driver, const char* column, const QString& text, const char* picture)
{
  gotoColumn(driver, QLatin1String(column));
  driver.step(QStringLiteral("type ") + text, formIs(invoiceCard), [&driver, text] {
    driver.type(text);
    driver.key(Qt::Key_Return);
  });
  driver.expect(QLatin1String(picture), nowShown);
  driver.picture(QLatin1String(picture));
}

// Types into a field of the header.
void changeHeader(TourDriver& driver, const char* control, const QString& text)
{
  driver.step("to the header", formIs(invoiceCard), [&driver] {
    if (qobject_cast<TDBGrid*>(TourDriver::focus()))
      driver.key(Qt::Key_F4);
  });
  tabTo(driver, QLatin1String(control));
  driver.step(QStringLiteral("type ") + text, {}, [&driver, text] {
    driver.key(Qt::Key_A, Qt::ControlModifier);
    driver.type(text);
    driver.key(Qt::Key_Tab);
  });
}

void changeLines(TourDriver& driver)
{
  driver.step("to the lines", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_F4); });
  changeLine(driver, "Quantity", QStringLiteral("24"), "quantity");
  driver.expect("the total follows the quantity", [] { return lineValue(u"TotalPrice") > 0; });
  changeLine(driver, "UnitPrice", QStringLiteral("8"), "price");
  driver.expect("24 x 8 = 192", [] { return lineValue(u"TotalPrice") == 192; });
  changeLine(driver, "LineDiscount", QStringLiteral("10"), "discount");
  driver.expect("less 10 % is 172.80", [] { return lineValue(u"TotalPrice") == 172.8; });
  changeLine(driver, "N_VATProdPostGroup_Code", QStringLiteral("S9"), "vat-group");
  driver.step("back to the line", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_Up); });  // its last column was left
  driver.expect("the VAT is 9 %", [] { return lineValue(u"VATPercent") == 9; });
  changeLine(driver, "Code", QStringLiteral("120062"), "item");
  driver.expect("another item at its list price", [] { return lineValue(u"OriginalPrice") == lineValue(u"UnitPrice"); });
  changeLine(driver, "N_Measure_Code", QStringLiteral("кашон"), "measure");
  driver.expect("a box of 24 at its own price", [] {
    return lineValue(u"QtyPerUnitOfMeasure") == 24 && lineValue(u"UnitPrice") == lineValue(u"OriginalPrice");
  });
}

void changeHeaders(TourDriver& driver)
{
  changeHeader(driver, "edtN_Contragent_Code", QStringLiteral("10005"));
  driver.expect("the customer is there", nowShown);
  driver.picture("customer");
  changeHeader(driver, "edtCurrency_Id", QStringLiteral("USD"));
  driver.expect("the rate is there", [] { return activeMaster()->FieldByName(u"CurrencyFactor")->AsFloat() != 1; });
  driver.picture("currency");
  tabTo(driver, QStringLiteral("edtPriceIncludingVAT"));
  driver.step("prices with VAT", {}, [&driver] { driver.key(Qt::Key_Space); driver.key(Qt::Key_Tab); });
  driver.picture("prices-with-vat");
  changeHeader(driver, "edtN_SubDocument_Code", QStringLiteral("INV-SOF"));
  driver.step("the question", dialogIs("QMessageBox"), [] {});
  driver.picture("document-type");
  driver.step("no", dialogIs("QMessageBox"), [&driver] { driver.key(Qt::Key_Escape); });
  driver.expect("the series follow, the prices stay", nowShown);
  driver.picture("document-type-kept");
}

// 9.99 does not pay 10.00; twenty does.
void payInCash(TourDriver& driver)
{
  driver.step("cash", formIs(invoiceCard), [&driver] { driver.key(Qt::Key_F9, Qt::ControlModifier); });
  driver.step("too little", dialogIs("TfChangeCalculation"), [&driver] {
    driver.type(QStringLiteral("9.99"));
    driver.key(Qt::Key_Return);
    driver.key(Qt::Key_Space);
  });
  driver.step("refused", dialogIs("QMessageBox"), [] {});
  driver.picture("cash-refused");
  driver.step("understood", dialogIs("QMessageBox"), [&driver] { driver.key(Qt::Key_Return); });
  driver.step("enough", dialogIs("TfChangeCalculation"), [&driver] {
    driver.type(QStringLiteral("99999"));
    driver.key(Qt::Key_Return);
  });
  driver.picture("cash-change");
  driver.step("paid", dialogIs("TfChangeCalculation"), [&driver] { driver.key(Qt::Key_Space); });
}

}  // namespace

void addInvoiceTour(TourDriver& driver)
{
  logIn(driver);
  openForm(driver, QStringLiteral("Фактури за продажба"), "TfBrSaleInvoice");
  driver.step("open the card", formIs("TfBrSaleInvoice"), [&driver] { driver.key(Qt::Key_Return, Qt::ControlModifier); });
  driver.step("invoice", formIs(invoiceCard), [] {});
  driver.picture("before");
  changeLines(driver);
  changeHeaders(driver);
  payInCash(driver);
}

}  // namespace kalvor
