// What each change of a line or of the header leaves behind.
#include "business/base_quantity.h"
#include "business/messages.h"
#include "business/sale_header_changes.h"
#include "business/sale_line_changes.h"
#include "sale_document.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/error_log.h"
#include "session/scripted_session.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

// The log entries of a routine.
struct SaleLog {
  SaleLog() { InitLog(); }
  ~SaleLog() { CloseLog(); }
  int entries(const QString& routine) const
  {
    QStringList lines;
    LoadErrorLog(lines);
    return int(lines.count(u"[Процедура]: "_s + routine));
  }
  ScratchDocuments documents;
};

using Routine = void (*)(TClientDataSet*, TClientDataSet*, bool&);

struct Bench {
  Bench()
  {
    LocalData.CompanyId = u"5"_s;
    LocalData.PrecisionAmount = 2;
    LocalData.PrecisionPrice = 5;
    session.server->answer(u"GetSaleLinePrice"_s, 0, {{1, 10.0}, {2, 1}});
    session.server->answer(u"GetSaleLineDiscount"_s, 0, {{1, 5.0}, {2, 0.0}});
    session.server->answer(u"GetCurrencyRate"_s, 0, {{3, 2.0}});
    session.server->handlers[u"RequestValue"_s] = [this](VariantArray& a) -> Variant {
      a[4] = values.value(a[1].toString());
      return counts.value(a[1].toString(), isNull(a[4]) ? 0 : 1);
    };
  }
  SaleLog log;
  ScriptedSession session;
  ScriptedPrompt prompt;
  SaleDocument d;
  QHash<QString, Variant> values{{u"G_VATPostingSetup"_s, VariantArray{9.0, 1, 2}},
                                 {u"N_SubDocument"_s, VariantArray{u"S1"_s, u"S2"_s}},
                                 {u"N_PaymentTerms"_s, VariantArray{14}}};
  QHash<QString, int> counts;
};

}  // namespace

class SaleChangesTest : public QObject {
  Q_OBJECT
 private slots:
  void codeTakesPriceAndFlag()
  {
    Bench b;
    b.d.header.FieldByName(u"PriceIncludingVAT")->SetAsInteger(1);
    b.d.addLine({{"Quantity", 2}, {"VATPercent", 20}, {"QtyPerUnitOfMeasure", 12}, {"UnitPrice", 3}});
    b.d.editLine({{"Code", u"A"_s}});
    SrvSaleDetailCodeOnChange(&b.d.header, &b.d.lines, b.d.guard, true, true);
    QCOMPARE(b.d.number("UnitPrice"), 3.0);  // suppressed
    SrvSaleDetailCodeOnChange(&b.d.header, &b.d.lines, b.d.guard, false, true);
    QCOMPARE(b.d.number("UnitPrice"), 10.0);
    QCOMPARE(b.d.number("OriginalPrice"), 10.0);
    QCOMPARE(b.d.number("LineDiscount"), 5.0);
    QCOMPARE(b.d.number("AllowInvoiceDisc"), 1.0);
    QCOMPARE(b.d.number("PriceIncludingVAT"), 1.0);
    QCOMPARE(b.d.number("QtyPerUnitOfMeasure"), 1.0);
    QCOMPARE(b.d.number("TotalPrice"), 20.0);  // the amount of the discount is not this routine's
    QVERIFY(!b.d.guard);
  }

  // A price list that has not changed leaves a price typed by hand; one without an answer leaves everything.
  void priceOnlyWhenTheListChanged_data()
  {
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("original");
    QTest::addColumn<bool>("lookup");
    QTest::addColumn<double>("unitPrice");
    QTest::newRow("changed") << 1 << 0 << 9.0 << true << 10.0;
    QTest::newRow("same as before") << 1 << 0 << 10.0 << true << 7.0;
    QTest::newRow("no answer") << 1 << -1 << 9.0 << true << 7.0;
    QTest::newRow("not allowed") << 1 << 0 << 9.0 << false << 7.0;
    QTest::newRow("set") << 6 << 0 << 9.0 << true << 10.0;
    QTest::newRow("service") << 3 << 0 << 9.0 << true << 10.0;
    QTest::newRow("account") << 2 << 0 << 9.0 << true << 7.0;
  }
  void priceOnlyWhenTheListChanged()
  {
    QFETCH(int, type);
    QFETCH(int, status);
    QFETCH(double, original);
    QFETCH(bool, lookup);
    QFETCH(double, unitPrice);
    Bench b;
    b.session.server->answer(u"GetSaleLinePrice"_s, status, {{1, 10.0}, {2, 1}});
    b.d.addLine({{"Type", type}, {"UnitPrice", 7}, {"OriginalPrice", original}, {"OriginalDiscount", 5},
                 {"LineDiscount", 3}, {"VATPercent", 20}, {"QtyPerUnitOfMeasure", 0}});
    b.d.editLine({{"Quantity", 4}});
    SrvSaleQuantityOnChange(&b.d.header, &b.d.lines, b.d.guard, false, lookup);
    QCOMPARE(b.d.number("UnitPrice"), unitPrice);
    QCOMPARE(b.d.number("LineDiscount"), 3.0);  // the list's discount is what it was
    QCOMPARE(b.d.number("QtyPerUnitOfMeasure"), 1.0);
    QCOMPARE(b.d.number("Quantity_Base"), 4.0);
    QCOMPARE(b.d.number("LineDiscountAmount"), unitPrice * 4 * 0.03);
    QCOMPARE(b.log.entries(u"uSaleCalculations.SaleQuantityOnChange"_s), 0);
  }

  void measureScalesTheListPrice()
  {
    Bench b;
    b.d.addLine({{"Quantity", 1}, {"QtyPerUnitOfMeasure", 12}, {"OriginalPrice", 9}, {"UnitPrice", 9}});
    b.d.editLine();
    SrvSaleMeasureOnChange(&b.d.header, &b.d.lines, b.d.guard, false, true);
    QCOMPARE(b.d.number("UnitPrice"), 120.0);
    QCOMPARE(b.d.number("OriginalPrice"), 10.0);
    QCOMPARE(b.d.number("TotalPrice"), 114.0);
  }

  void ratioMovesThePrice_data()
  {
    QTest::addColumn<double>("quantity");
    QTest::addColumn<double>("base");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("newBase");
    QTest::newRow("piece to box") << 2.0 << 2.0 << 12.0 << 120.0 << 24.0;
    QTest::newRow("box to piece") << 2.0 << 24.0 << 1.0 << 0.83333 << 2.0;
    QTest::newRow("no base yet") << 2.0 << 0.0 << 12.0 << 120.0 << 24.0;
    QTest::newRow("no ratio is one") << 2.0 << 2.0 << 0.0 << 10.0 << 2.0;
    QTest::newRow("no quantity") << 0.0 << 0.0 << 12.0 << 10.0 << 0.0;
  }
  void ratioMovesThePrice()
  {
    QFETCH(double, quantity);
    QFETCH(double, base);
    QFETCH(double, ratio);
    Bench b;
    b.d.addLine({{"Quantity", quantity}, {"Quantity_Base", base}, {"UnitPrice", 10}, {"QtyPerUnitOfMeasure", ratio}});
    b.d.editLine();
    SrvSaleQtyPerUnitOfMeasureOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QTEST(b.d.number("UnitPrice"), "price");
    QTEST(b.d.number("Quantity_Base"), "newBase");
  }

  void discountsTotalsAndCosts_data()
  {
    QTest::addColumn<Routine>("routine");
    QTest::addColumn<SaleDocument::Values>("typed");
    QTest::addColumn<bool>("includesVat");
    QTest::addColumn<SaleDocument::Values>("left");
    using Values = SaleDocument::Values;
    QTest::newRow("percent") << Routine(SrvSaleLineDiscOnChange) << Values{{"LineDiscount", 10}} << false
                             << Values{{"LineDiscountAmount", 15}, {"TotalPrice", 135}, {"UnitCost_ACY", 45}};
    QTest::newRow("percent of a price with VAT")
        << Routine(SrvSaleLineDiscOnChange) << Values{{"LineDiscount", 10}} << true
        << Values{{"LineDiscountAmount", 12.5}, {"TotalPrice", 135}, {"TotalValue", 112.5}, {"UnitCost_ACY", 37.5}};
    QTest::newRow("percent too small to count") << Routine(SrvSaleLineDiscOnChange) << Values{{"LineDiscount", 0.000001}} << false
                                                << Values{{"LineDiscountAmount", 0}, {"TotalPrice", 150}};
    QTest::newRow("amount") << Routine(SrvSaleLineDiscAmntOnChange) << Values{{"LineDiscountAmount", 15}} << false
                            << Values{{"LineDiscount", 10}, {"InvDiscAmount", 0}, {"TotalPrice", 135}};
    QTest::newRow("amount off nothing") << Routine(SrvSaleLineDiscAmntOnChange)
                                        << Values{{"LineDiscountAmount", 15}, {"UnitPrice", 0}} << false
                                        << Values{{"LineDiscount", 0}, {"TotalPrice", -15}};
    QTest::newRow("document discount") << Routine(SrvSaleInvDiscAmntOnChange) << Values{{"InvDiscAmount", 30}} << false
                                       << Values{{"UnitCost_ACY", 40}, {"TotalPrice", 150}, {"TotalValue", 120}};
    QTest::newRow("all discounted") << Routine(SrvSaleInvDiscAmntOnChange) << Values{{"InvDiscAmount", 150}} << false
                                    << Values{{"TotalPrice", 150}, {"TotalValue", 0}, {"VATBaseAmount", 0}, {"TotalVAT_LCY", 0}};
    QTest::newRow("total") << Routine(SrvSaleTotalPriceOnChange) << Values{{"TotalPrice", 135.004}} << false
                           << Values{{"TotalPrice", 135}, {"LineDiscountAmount", 15}, {"LineDiscount", 10}};
    QTest::newRow("unit cost") << Routine(SrvSaleUnitCost_ACYOnChange) << Values{{"UnitCost_ACY", 45.000004}} << false
                               << Values{{"UnitCost_ACY", 45}, {"UnitCost_LCY", 45}, {"LineDiscount", 10}};
    QTest::newRow("unit cost with VAT in the price")
        << Routine(SrvSaleUnitCost_LCYOnChange) << Values{{"UnitCost_ACY", 37.5}, {"UnitCost_LCY", 1}} << true
        << Values{{"UnitCost_LCY", 37.5}, {"LineDiscount", 10.00001}};  // of a net price of 41.66667
    QTest::newRow("unit cost of a free item") << Routine(SrvSaleUnitCost_ACYOnChange)
                                              << Values{{"UnitCost_ACY", 5}, {"UnitPrice", 0}} << false
                                              << Values{{"UnitCost_ACY", 0}, {"UnitCost_LCY", 0}, {"LineDiscount", 0}};
  }
  void discountsTotalsAndCosts()
  {
    QFETCH(Routine, routine);
    QFETCH(SaleDocument::Values, typed);
    QFETCH(bool, includesVat);
    QFETCH(SaleDocument::Values, left);
    Bench b;
    b.d.header.FieldByName(u"PriceIncludingVAT")->SetAsInteger(includesVat);
    b.d.addLine({{"Quantity", 3}, {"UnitPrice", 50}, {"VATPercent", 20}, {"InvDiscAmount", 0}, {"LineDiscount", 0},
                 {"LineDiscountAmount", 0}});
    b.d.editLine(typed);
    b.d.guard = true;
    routine(&b.d.header, &b.d.lines, b.d.guard);
    QVERIFY(b.d.guard);
    for (const auto& [name, value] : typed)
      QCOMPARE(b.d.number(name), value.toDouble());  // held back by the guard
    b.d.guard = false;
    routine(&b.d.header, &b.d.lines, b.d.guard);
    QVERIFY(!b.d.guard);
    for (const auto& [name, value] : left)
      QCOMPARE(QPair(QByteArray(name), b.d.number(name)), QPair(QByteArray(name), value.toDouble()));
  }

  void productGroupTakesTheVatSetup()
  {
    Bench b;
    b.d.addLine({{"Quantity", 1}, {"UnitPrice", 50}, {"UnitCost_ACY", 45}, {"LineDiscount", 10}, {"VATPercent", 20},
                 {"VATProdPostGroup_Id", u"P"_s}, {"VATBusPostGroup_Id", u"B"_s}});
    b.d.editLine();
    SrvSaleVATProdPostingGroupOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.number("VATPercent"), 9.0);
    QCOMPARE(b.d.number("VATCalculationType"), 1.0);
    QCOMPARE(b.d.number("VATLedger"), 2.0);
    QCOMPARE(b.d.number("UnitPrice"), 50.0);
    const FilterArray asked = filterFromVariant(b.session.server->sentOnce(u"RequestValue"_s).value(3));
    QCOMPARE(asked.size(), 3);
    QCOMPARE(asked[0], (FilterRow{u"G_VATPostingSetup.VATBus_PostingGroup"_s, u"="_s, u"B"_s, u"AND"_s, {}}));
    b.d.editLine({{"LineDiscount", 100}});
    SrvSaleGenProdPostingGroupOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.number("UnitPrice"), 0.0);
    b.counts[u"G_VATPostingSetup"_s] = 0;
    b.d.editLine({{"UnitPrice", 33}});
    SrvSaleVATProdPostingGroupOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.number("UnitPrice"), 33.0);
    QCOMPARE(b.log.entries(u"SaleVATProdPostingGroupOnChange"_s), 1);
  }

  void shippedAndInvoicedStayWithinTheQuantity()
  {
    Bench b;
    const QString message = u"Сбора от фактурираното и експедираното количество не може да надвишава количеството"_s;
    b.d.addLine({{"Quantity", 0.3}, {"QtyToShip", 0.1}, {"ShippedQty", 0.2}, {"QtyToInvoice", 0.1}, {"InvoicedQty", 0.20001}});
    SrvSaleValidateQuantityShipped(&b.d.header, &b.d.lines, b.d.guard);  // 0.1 + 0.2 is not more than 0.3
    try {
      SrvSaleValidateQuantityInvoiced(&b.d.header, &b.d.lines, b.d.guard);
      QFAIL("accepted");
    } catch (const DataError& error) {
      QCOMPARE(error.message(), message);
    }
  }

  void contractorReachesEveryLine()
  {
    Bench b;
    SaleDocument::set(b.d.header, {{"InvToContragent_ID", u"C"_s}, {"VATBusPostGroup_Id", u"B"_s},
                                   {"GenBusPostGroup_Id", u"G"_s}, {"Currency_Id", u"EUR"_s}});
    for (int i = 0; i < 3; ++i)
      b.d.addLine({{"Quantity", 1 + i}, {"UnitPrice", 50}, {"VATPercent", 20}, {"VATProdPostGroup_Id", u"P"_s}});
    b.d.lines.SetRecNo(2);
    InvToContragentOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.d.text("Id"), u"2"_s);
    QCOMPARE(b.d.lines.State(), DataSetState::Browse);
    for (b.d.lines.First(); !b.d.lines.Eof(); b.d.lines.Next()) {
      QCOMPARE(b.d.number("UnitPrice"), 10.0);
      QCOMPARE(b.d.number("VATPercent"), 9.0);
      QCOMPARE(b.d.text("Currency_Id"), u"EUR"_s);
      QCOMPARE(b.d.text("GenBusPostGroup_Id"), u"G"_s);
      QCOMPARE(b.d.number("TotalPrice"), 10.0 * b.d.number("Quantity"));
    }
    b.counts[u"G_VATPostingSetup"_s] = 2;
    InvToContragentOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.log.entries(u"uSaleCalculations.ContragentOnChange"_s), 1);
  }

  void documentTypeAsksBeforeItRecalculates()
  {
    Bench b;
    SrvSaleSubDocTypeOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.prompt.messages.size(), 0);  // no lines, nothing to ask
    QCOMPARE(b.d.header.FieldByName(u"PostingSerie_Id")->AsString(), u"S1"_s);
    QCOMPARE(b.d.header.FieldByName(u"Series_Id")->AsString(), u"S2"_s);
    b.d.addLine({{"Quantity", 2}, {"UnitPrice", 50}, {"VATPercent", 20}});
    b.prompt.answers = {PromptButton::No, PromptButton::Yes};
    SrvSaleSubDocTypeOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.prompt.takeMessages(), QStringList{_queReCalculateDiscount});
    QCOMPARE(b.prompt.offered, (QList{PromptButton::Yes, PromptButton::No}));
    QCOMPARE(b.d.number("UnitPrice"), 50.0);
    b.values[u"N_SubDocument"_s] = VariantArray{Variant(), QString()};
    SrvSaleSubDocTypeOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.d.header.FieldByName(u"Series_Id")->AsString(), u"S2"_s);  // empty series change nothing
    QCOMPARE(b.d.number("UnitPrice"), 10.0);
    b.counts[u"N_SubDocument"_s] = 0;
    SrvSaleSubDocTypeOnChange(&b.d.header, &b.d.lines, b.d.guard, true);
    QCOMPARE(b.log.entries(u"uSaleCalculations.SaleSubDocTypeOnChange"_s), 1);
  }

  void currencyMovesPricesOnly_data()
  {
    QTest::addColumn<QString>("currency");
    QTest::addColumn<double>("oldFactor");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("price");
    QTest::newRow("local to foreign") << u"EUR"_s << 1.0 << 0 << 5.0;
    QTest::newRow("foreign to local") << QString() << 1.95583 << 0 << 19.5583;
    QTest::newRow("no rate") << u"ZZZ"_s << 1.0 << -1 << 0.0;
  }
  void currencyMovesPricesOnly()
  {
    QFETCH(QString, currency);
    QFETCH(double, oldFactor);
    QFETCH(int, status);
    Bench b;
    b.session.server->answer(u"GetCurrencyRate"_s, status, {{3, 2.0}});
    SaleDocument::set(b.d.header, {{"Currency_Id", currency}, {"CurrencyFactor", oldFactor}});
    b.d.addLine({{"Quantity", 2}, {"UnitPrice", 10}, {"OriginalPrice", 10}, {"TotalPrice", 20}});
    SrvSaleCurrencyOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QTEST(b.d.number("UnitPrice"), "price");
    QCOMPARE(b.d.number("OriginalPrice"), 0.0);
    QCOMPARE(b.d.number("TotalPrice"), 20.0);
  }

  void vatFlagBusinessGroupAndTerm()
  {
    Bench b;
    b.d.header.FieldByName(u"PriceIncludingVAT")->SetAsInteger(1);
    b.d.header.FieldByName(u"BusinessGroup_Id")->SetAsString(u"7"_s);
    b.d.addLine({{"UnitPrice", 100}, {"VATPercent", 20.9}, {"PriceIncludingVAT", 0}});  // the whole part counts
    b.d.addLine({{"UnitPrice", 100}, {"VATPercent", 20}, {"PriceIncludingVAT", 1}});
    SrvSalePriceIncudingVATOnChange(&b.d.header, &b.d.lines, b.d.guard);
    b.d.lines.First();
    QCOMPARE(b.d.number("UnitPrice"), 120.0);
    QCOMPARE(b.d.number("PriceIncludingVAT"), 1.0);
    b.d.lines.Last();
    QCOMPARE(b.d.number("UnitPrice"), 100.0);
    b.d.header.FieldByName(u"PriceIncludingVAT")->SetAsInteger(0);
    SrvSalePriceIncudingVATOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.number("UnitPrice"), 83.33333);
    SrvSaleBusinessGroupOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.text("BusinessGroup_Id"), u"7"_s);
    QCOMPARE(b.prompt.waiting, 0);
    SrvSalePayTermOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.header.FieldByName(u"DueDate")->AsDateTime().date(), QDate(2026, 2, 14));
    b.counts[u"N_PaymentTerms"_s] = 0;
    SrvSalePayTermOnChange(&b.d.header, &b.d.lines, b.d.guard);
    QCOMPARE(b.d.header.FieldByName(u"DueDate")->AsDateTime().date(), QDate(2026, 1, 31));
  }

  void baseQuantities()
  {
    Bench b;
    b.d.addLine({{"Quantity", 3}, {"QtyPerUnitOfMeasure", 12}, {"Quantity_Base", 1}});
    b.d.editLine();
    TField* quantity = b.d.lines.FieldByName(u"Quantity");
    bool guard = true;
    CalcBaseQuantity(quantity, guard);
    QCOMPARE(b.d.number("Quantity_Base"), 1.0);
    guard = false;
    CalcBaseQuantity(quantity, guard);
    QCOMPARE(b.d.number("Quantity_Base"), 36.0);
    CalcBaseQuantity(quantity, guard, u"QtyToShip"_s);
    QCOMPARE(b.d.number("QtyToShip"), 36.0);
    b.d.lines.FieldByName(u"Quantity_Base")->SetAsFloat(30);
    CalcQuantyFromBase(b.d.lines.FieldByName(u"Quantity_Base"));
    QCOMPARE(b.d.number("Quantity"), 2.5);
    b.d.lines.FieldByName(u"QtyPerUnitOfMeasure")->SetAsFloat(0);
    CalcQuantyFromBase(b.d.lines.FieldByName(u"Quantity_Base"));
    QCOMPARE(b.d.number("Quantity"), 0.0);
    b.d.lines.Post();
    b.d.lines.FieldByName(u"Quantity_Base")->ReadOnly = true;
    b.d.lines.Edit();
    QVERIFY_THROWS_EXCEPTION(TELException, CalcBaseQuantity(quantity, guard));
    QVERIFY(!guard);
    QCOMPARE(b.log.entries(u"TfEdPurchase.ContragentFieldOnChange"_s), 1);
  }
};

static RegisterTest<SaleChangesTest> registered;
#include "sale_changes_test.moc"
