// Rounding, line amounts and document VAT.
#include "several_tests.h"

#include "business/sale_line_amounts.h"
#include "business/sale_line_changes.h"
#include "business/vat_totals.h"
#include "common/rounding.h"
#include "session/local_data.h"

using namespace kalvor;

namespace {

RecordSet recordOf(std::initializer_list<std::pair<const char16_t*, Variant>> values)
{
  QList<FieldDef> fields;
  VariantArray row;
  for (const auto& [name, value] : values) {
    FieldDef field;
    field.name = QString::fromUtf16(name);
    field.type = value.userType() == QMetaType::QString ? DataType::WideString : DataType::Float;
    fields.append(field);
    row.append(value);
  }
  RecordSet records(fields);
  records.appendRow(row);
  return records;
}

struct SaleCase {
  bool includesVat;
  double factor, vat, quantity, unitPrice, discount, invoiceDiscount;
  double totalPrice, totalValue, vatValue, totalVat, totalValueLcy, unitCost;
};

}  // namespace

class SaleAmountsTest : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void init()
  {
    LocalData = {};
    LocalData.PrecisionAmount = 2;
    LocalData.PrecisionPrice = 5;
  }

  void rounding_data()
  {
    QTest::addColumn<int>("digits");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("half up") << 0 << 2.5 << 3.0;
    QTest::newRow("negative half away from zero") << 0 << -2.5 << -3.0;
    QTest::newRow("only the first dropped digit counts") << 0 << 2.4999 << 2.0;
    QTest::newRow("negative digits change nothing") << -1 << 2.4999 << 2.4999;
    QTest::newRow("two digits") << 2 << 20.2498 << 20.25;
    QTest::newRow("too large to scale") << 2 << 1e17 << 1e17;
    QTest::newRow("too small to scale") << 2 << -1e17 << -1e17;
    QTest::newRow("negative zero stays zero") << 2 << -0.001 << 0.0;
  }
  void rounding()
  {
    QFETCH(int, digits);
    QFETCH(double, value);
    QFETCH(double, expected);
    QCOMPARE(double(RoundUp(digits, value)), expected);
  }

  void lineAmounts_data()
  {
    QTest::addColumn<SaleCase>("c");
    QTest::newRow("plain") << SaleCase{false, 1, 20, 2, 10.125, 0, 0, 20.25, 20.25, 4.05, 24.30, 20.25, 10.125};
    QTest::newRow("rounds up") << SaleCase{false, 1, 20, 2, 10.1249, 0, 0, 20.25, 20.25, 4.05, 24.30, 20.25, 10.1249};
    QTest::newRow("rounds down") << SaleCase{false, 1, 20, 2, 10.1224, 0, 0, 20.24, 20.24, 4.05, 24.29, 20.24, 10.1224};
    QTest::newRow("prices with VAT, foreign currency")
        << SaleCase{true, 1.95583, 20, 1, 120, 0, 0, 120, 100, 20, 120, 195.58, 100};
    QTest::newRow("discount") << SaleCase{false, 1, 20, 3, 50, 10, 0, 135, 135, 27, 162, 135, 45};
    QTest::newRow("no quantity") << SaleCase{false, 1, 20, 0, 50, 10, 0, 0, 0, 0, 0, 0, 50};
    QTest::newRow("returned goods") << SaleCase{false, 1, 20, -2, 10.125, 0, 0, -20.25, -20.25, -4.05, -24.30, -20.25, 10.125};
    QTest::newRow("gift") << SaleCase{false, 1, 20, 2, 10, 100, 0, 0, 0, 0, 0, 0, 0};
  }
  void lineAmounts()
  {
    QFETCH(SaleCase, c);
    TClientDataSet header, line;
    header.SetRecords(recordOf({{u"PriceIncludingVAT", c.includesVat ? 1.0 : 0.0},
                                {u"CurrencyFactor", c.factor},
                                {u"Currency_Id", QString(c.factor == 1 ? "" : "EUR")}}));
    line.SetRecords(recordOf({{u"Quantity", c.quantity}, {u"QtyPerUnitOfMeasure", 0.0}, {u"Quantity_Base", 0.0},
                              {u"UnitPrice", c.unitPrice}, {u"LineDiscount", c.discount}, {u"LineDiscountAmount", 7.0},
                              {u"InvDiscAmount", c.invoiceDiscount}, {u"VATPercent", c.vat}, {u"TotalPrice", 7.0},
                              {u"TotalValue", 7.0}, {u"VATBaseAmount", 7.0}, {u"VATValue", 7.0}, {u"TotalVAT", 7.0},
                              {u"TotalValue_LCY", 7.0}, {u"VatValue_LCY", 7.0}, {u"TotalVAT_LCY", 7.0},
                              {u"UnitCost_ACY", 7.0}, {u"UnitCost_LCY", 7.0}}));
    line.Edit();
    bool guard = false;
    SrvSaleQuantityOnChange(&header, &line, guard, false, false);
    QVERIFY(!guard);
    const auto value = [&](const char16_t* name) { return line.FieldByName(QStringView(name))->AsFloat(); };
    QCOMPARE(value(u"Quantity_Base"), c.quantity);
    QCOMPARE(value(u"TotalPrice"), c.totalPrice);
    QCOMPARE(value(u"TotalValue"), c.totalValue);
    QCOMPARE(value(u"VATBaseAmount"), c.totalValue);
    QCOMPARE(value(u"VATValue"), c.vatValue);
    QCOMPARE(value(u"TotalVAT"), c.totalVat);
    QCOMPARE(value(u"TotalValue_LCY"), c.totalValueLcy);
    QCOMPARE(value(u"UnitCost_ACY"), c.unitCost);
  }

  void guardStopsChangeRoutinesAndSharedStepsKeepIt()
  {
    TClientDataSet header, line;
    header.SetRecords(recordOf({{u"PriceIncludingVAT", 0.0}, {u"CurrencyFactor", 1.0}, {u"Currency_Id", QString()}}));
    line.SetRecords(recordOf({{u"Quantity", 3.0}, {u"UnitPrice", 50.0}, {u"LineDiscountAmount", 15.0}, {u"LineDiscount", 0.0},
                              {u"InvDiscAmount", 0.0}, {u"VATPercent", 20.0}, {u"TotalPrice", 0.0}, {u"UnitCost_ACY", 0.0},
                              {u"UnitCost_LCY", 0.0}}));
    line.Edit();
    bool guard = true;
    SrvSaleLineDiscAmntOnChange(&header, &line, guard);
    QVERIFY(guard);
    QCOMPARE(line.FieldByName(u"LineDiscount")->AsFloat(), 0.0);
    UpdateSrvSaleUnitCost(&header, &line, guard);
    QVERIFY(guard);
    QCOMPARE(line.FieldByName(u"UnitCost_ACY")->AsFloat(), 45.0);
    guard = false;
    SrvSaleLineDiscAmntOnChange(&header, &line, guard);  // the missing total fields stop it after the percent
    QVERIFY(!guard);
    QCOMPARE(line.FieldByName(u"LineDiscount")->AsFloat(), 10.0);
  }

  void vatIsRoundedOncePerGroup()
  {
    TVATTotals totals(2);
    totals.AddVATGroups("20", 20, 0.03, 0.03);
    totals.AddVATGroups("20", 9, 0.03, 0.03);  // the group keeps its percent
    QCOMPARE(totals.ValueByName("vatvalue"), 0.01);
    totals.AddVATGroups("9", 9, 100, 50);
    QCOMPARE(totals.ValueByName("TOTALVALUE"), 100.06);
    QCOMPARE(totals.ValueByName("CRN_VATVALUE"), 4.51);
    QCOMPARE(totals.ValueByName("TotalVat"), 109.07);
    QCOMPARE(totals.ValueByName("VAT"), 0.0);
    totals.ClearVATGroups();
    QCOMPARE(totals.ValueByName("TOTALVALUE"), 0.0);
    QVERIFY(totals.groups().isEmpty());
  }
};

static kalvor::testing::RegisterTest<SaleAmountsTest> registered;
#include "sale_amounts_test.moc"
