// Posting of sale documents: what each leaves behind, counted a second way, and what is refused.
#include <thread>

#include "posting_company.h"
#include "several_tests.h"

Q_DECLARE_METATYPE(kalvor::testing::TestSale)

namespace kalvor::testing {

using namespace server;

namespace {

// Nothing is found where everything adds up.
constexpr const char* invariants[] = {
    // Debit is credit.
    "SELECT 1 FROM G_Entry GROUP BY Transaction_Id HAVING SUM(DebitAmount) <> SUM(CreditAmount)",
    // Goods: the ledger is the entries.
    "SELECT 1 FROM G_Account a WHERE a.Code = '304' AND COALESCE((SELECT SUM(DebitAmount - CreditAmount) FROM G_Entry WHERE Account_Id = a.Id), 0) "
    "<> COALESCE((SELECT SUM(CostAmount) FROM G_ItemValueEntry WHERE Comp_Id = a.Comp_Id), 0)",
    // Debts: the ledger is what is open, and an entry is what its details say.
    "SELECT 1 FROM G_Account a WHERE a.Code = '411' AND COALESCE((SELECT SUM(DebitAmount - CreditAmount) FROM G_Entry WHERE Account_Id = a.Id), 0) "
    "<> COALESCE((SELECT SUM(Remaining_LCY) FROM G_ContragentEntry WHERE Comp_Id = a.Comp_Id), 0)",
    "SELECT 1 FROM G_ContragentEntry e WHERE Remaining <> (SELECT SUM(Amount) FROM G_ContragentEntryDetail WHERE Entry_Id = e.Id) "
    "OR Remaining_LCY <> (SELECT SUM(Amount_LCY) FROM G_ContragentEntryDetail WHERE Entry_Id = e.Id) "
    "OR Opened <> CASE WHEN Remaining <> 0 OR Remaining_LCY <> 0 THEN 1 ELSE 0 END",
    // VAT: the ledger is the journal, and a document is its groups.
    "SELECT 1 FROM G_Account a WHERE a.Code = '4532' AND COALESCE((SELECT SUM(CreditAmount - DebitAmount) FROM G_Entry WHERE Account_Id = a.Id), 0) "
    "<> COALESCE((SELECT SUM(VATAmount) FROM G_VATEntry WHERE Comp_Id = a.Comp_Id), 0)",
    "SELECT 1 FROM D_SaleInvoiceHeader h WHERE GlobalDoc_Id IS NOT NULL AND (TotalValue_LCY <> (SELECT SUM(BaseAmount) FROM G_VATEntry WHERE "
    "Document_Id = h.Id) OR VATValue_LCY <> (SELECT SUM(VATAmount) FROM G_VATEntry WHERE Document_Id = h.Id) OR VATValue <> (SELECT "
    "SUM(VATAmount_ACY) FROM G_VATEntry WHERE Document_Id = h.Id))",
    "SELECT 1 FROM D_SaleCrMemoHeader h WHERE TotalValue_LCY <> -(SELECT SUM(BaseAmount) FROM G_VATEntry WHERE Document_Id = h.Id) "
    "OR VATValue_LCY <> -(SELECT SUM(VATAmount) FROM G_VATEntry WHERE Document_Id = h.Id)",
    // Money: the ledger is the entries.
    "SELECT 1 FROM N_Company c WHERE COALESCE((SELECT SUM(DebitAmount - CreditAmount) FROM G_Entry JOIN G_Account a ON a.Id = Account_Id WHERE "
    "a.Comp_Id = c.Id AND a.Code IN ('501', '503')), 0) <> COALESCE((SELECT SUM(Amount_LCY) FROM G_LBankAccountEntry WHERE Comp_Id = c.Id), 0)",
    // Goods that moved stand in the store documents.
    "SELECT 1 FROM D_ShipmentHeader h WHERE (SELECT SUM(Quantity_Base) FROM D_ShipmentLine WHERE Master_Id = h.Id) <> "
    "-(SELECT SUM(Quantity) FROM G_ItemEntry WHERE Document_Id = h.Id) OR (SELECT SUM(Quantity) FROM G_ItemEntry WHERE Document_Id = h.Id) <> "
    "(SELECT SUM(v.Quantity) FROM G_ItemValueEntry v WHERE v.Document_Id = h.AppliesToDoc_Id)",
    // Every posted document is linked both ways, and its lines are all there.
    "SELECT 1 FROM D_GlobalSaleHeader g WHERE GlobDocIsPosted = 1 AND NOT EXISTS (SELECT 1 FROM D_SaleInvoiceHeader h WHERE h.Id = g.PostedDoc_Id AND "
    "h.GlobalDoc_Id = g.Id AND h.DocStatus = 1) AND NOT EXISTS (SELECT 1 FROM D_SaleCrMemoHeader h WHERE h.Id = g.PostedDoc_Id AND h.GlobalDoc_Id = g.Id)",
    "SELECT 1 FROM D_GlobalSaleLine l JOIN D_GlobalSaleHeader g ON g.Id = l.Master_Id WHERE GlobDocIsPosted = 1 AND NOT EXISTS (SELECT 1 FROM "
    "D_SaleInvoiceLine p WHERE p.Id = l.Id AND p.Master_Id = g.PostedDoc_Id AND p.TotalValue = l.TotalValue) AND NOT EXISTS (SELECT 1 FROM "
    "D_SaleCrMemoLine p WHERE p.Id = l.Id AND p.Master_Id = g.PostedDoc_Id AND p.TotalValue = l.TotalValue)",
    // Numbers: as many as were counted, none twice.
    "SELECT 1 FROM N_Series s WHERE Code = 'INV-SOF' AND Comp_Id = '1' AND LastNo <> (SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE Series_Id = s.Id) "
    "+ (SELECT COUNT(*) FROM D_SaleCrMemoHeader WHERE Series_Id = s.Id)",
};

// Everything that posting writes to.
constexpr const char* writtenTables[] = {"D_SaleInvoiceHeader", "D_SaleInvoiceLine", "D_SaleCrMemoHeader", "D_SaleCrMemoLine",
    "D_ShipmentHeader", "D_ShipmentLine", "G_Entry", "G_VATEntry", "G_ItemEntry", "G_ItemValueEntry", "G_ContragentEntry",
    "G_ContragentEntryDetail", "G_LBankAccountEntry", "srv_Request"};

QString fingerprintOf(Connection& db)
{
  QStringList counts;
  for (const char* table : writtenTables)
    counts << db.value(QStringLiteral("SELECT COUNT(*) FROM ") + QLatin1StringView(table)).toString();
  counts << db.value(QStringLiteral("SELECT SUM(LastNo) FROM N_Series")).toString()
         << db.value(QStringLiteral("SELECT SUM(GlobDocIsPosted) FROM D_GlobalSaleHeader")).toString()
         << db.value(QStringLiteral("SELECT SUM(Remaining) FROM G_ContragentEntry")).toString();
  return counts.join(u' ');
}

QString brokenInvariants(Connection& db)
{
  QStringList broken;
  for (const char* sql : invariants)
    if (!isNull(db.value(QString::fromUtf8(sql) + QStringLiteral(" LIMIT 1"))))
      broken << QString::fromUtf8(sql).left(90);
  return broken.join(u'\n');
}

// The ledger of a document: "411 +120.00 702 -100.00 ...", debit positive.
QString ledgerOf(Connection& db, const QString& documentId)
{
  const RecordSet rows = db.query(QStringLiteral("SELECT a.Code, e.DebitAmount - e.CreditAmount AS \"Amount:AMOUNT\" FROM G_Entry e "
      "JOIN G_Account a ON a.Id = e.Account_Id WHERE e.Document_Id = ? ORDER BY e.Line_No"), {documentId});
  QStringList texts;
  for (qsizetype i = 0; i < rows.rows; ++i)
    texts << rows.value(i, 0).toString() + u' ' + QString::asprintf("%+.2f", rows.value(i, 1).toDouble());
  return texts.join(u' ');
}

}  // namespace

class PostingTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    company_ = std::make_unique<PostingCompany>();
    admin_ = std::make_unique<PostingCaller>(*company_, "SUPERVSR");
  }
  void cleanupTestCase()
  {
    admin_.reset();
    company_.reset();
  }
  // What a test does is undone after it.
  void init() { tried_ = std::make_unique<Transaction>(company_->db()); }
  void cleanup() { tried_.reset(); }

  void ledgers_data()
  {
    QTest::addColumn<TestSale>("sale");
    QTest::addColumn<QString>("ledger");
    QTest::addColumn<QString>("counts");
    const auto row = [](const char* name, TestSale sale, const char* ledger, const char* counts) {
      sale.id = QStringLiteral("Д");
      QTest::newRow(name) << sale << ledger << counts;
    };
    // 411 and income, VAT once a percent, goods at average cost: 10.00 / 3.
    row("goods", {.lines = {{"СТОКА", 1, 50}}}, "411 +60.00 702 -50.00 4532 -10.00 304 -3.33 702 +3.33", "1 0 0 1 1 1 5 1 1 1 0 0 0");
    row("the last piece takes the rest", {.lines = {{"СТОКА", 2, 50}, {"СТОКА", 1, 50}}},
        "411 +180.00 702 -150.00 4532 -30.00 304 -10.00 702 +10.00", "1 0 0 1 2 2 5 1 1 1 0 0 0");
    row("groups and a service", {.lines = {{"СТОКА", 1, 0.03}, {"УСЛУГА", 1, 0.03}, {"ХРАНА", 10, 1.99}}},
        "411 +21.76 702 -19.93 703 -0.03 4532 -1.80 304 -28.02 702 +28.02", "1 0 0 1 2 2 6 2 1 1 0 0 0");
    row("paid at once", {.lines = {{"УСЛУГА", 2, 10}}, .cash = true}, "411 +24.00 501 +24.00 411 -24.00 703 -20.00 4532 -4.00",
        "1 0 0 0 0 0 5 1 2 4 1 0 0");
    row("within the Union", {.groups = "EU/EU", .lines = {{"УСЛУГА", 2, 10}}}, "411 +20.00 703 -20.00", "1 0 0 0 0 0 2 1 1 1 0 0 0");
    row("in a foreign currency", {.groups = "EXPORT/EXPORT", .currency = QStringLiteral("USD"), .factor = 0.9137, .lines = {{"УСЛУГА", 3, 33.33}}},
        "411 +91.36 703 -91.36", "1 0 0 0 0 0 2 1 1 1 0 0 0");
    row("a credit memo alone", {.kind = 1, .lines = {{"СТОКА", 1, 50}}}, "411 -60.00 702 +50.00 4532 +10.00 304 +3.33 702 -3.33",
        "0 1 0 1 1 1 5 1 1 1 0 0 0");
    row("given back in cash", {.kind = 1, .lines = {{"УСЛУГА", 1, 10}}, .cash = true}, "411 -12.00 501 -12.00 411 +12.00 703 +10.00 4532 +2.00",
        "0 1 0 0 0 0 5 1 2 4 1 0 0");
    row("worth nothing", {.lines = {{"СТОКА", 1, 0}}}, "304 -3.33 702 +3.33", "1 0 0 1 1 1 2 0 1 1 0 0 0");
  }
  void ledgers()
  {
    QFETCH(TestSale, sale);
    company_->add(sale);
    const VariantArray posted = admin_->post(sale.id);
    QCOMPARE(posted.size(), 5);
    QTEST(ledgerOf(company_->db(), posted[0].toString()), "ledger");
    QCOMPARE(brokenInvariants(company_->db()), QString());
    QCOMPARE(posted[3].toInt(), sale.kind);
    VariantArray arguments{sale.kind, 0, posted[0]};
    QStringList counts;
    for (const Variant& count : admin_->call("GetCountOfDocs", arguments).toList())
      counts << count.toString();
    QTEST(counts.join(u' '), "counts");
  }


  // A sale of three with a foreign customer at 0.90, returned in two parts at 0.95 and at 0.85.
  void creditMemosApply()
  {
    const TestSale sale{.id = QStringLiteral("Ф"), .groups = "EXPORT/EXPORT", .currency = QStringLiteral("USD"), .factor = 0.9, .lines = {{"СТОКА", 3, 100}}};
    company_->add(sale);
    const QString invoice = admin_->post(sale.id)[0].toString();
    QCOMPARE(ledgerOf(company_->db(), invoice), QStringLiteral("411 +270.00 702 -270.00 304 -10.00 702 +10.00"));
    const auto returned = [&](const char* id, double quantity, double factor, const char* ledger) {
      TestSale memo = sale;
      memo.id = QString::fromUtf8(id);
      memo.kind = 1;
      memo.factor = factor;
      memo.lines = {{"СТОКА", quantity, 100, QStringLiteral("Ф1")}};
      memo.appliesTo = invoice;
      company_->add(memo);
      const QString posted = admin_->post(memo.id)[0].toString();
      QCOMPARE(ledgerOf(company_->db(), posted), QString::fromUtf8(ledger));
      QCOMPARE(brokenInvariants(company_->db()), QString());
    };
    // The goods come back at the cost they left with: 3.33, and the rest.
    returned("К-1", 1, 0.95, "411 -95.00 411 +5.00 724 -5.00 702 +95.00 304 +3.33 702 -3.33");
    QCOMPARE(company_->number(QStringLiteral("SELECT Remaining FROM G_ContragentEntry WHERE Document_Id = '%1'").arg(invoice)), 200);
    returned("К-2", 2, 0.85, "411 -170.00 411 -10.00 624 +10.00 702 +170.00 304 +6.67 702 -6.67");
    QCOMPARE(company_->number(QStringLiteral("SELECT SUM(Opened) FROM G_ContragentEntry WHERE Contragent_Id = 'К1'")), 0);
    QCOMPARE(company_->number(QStringLiteral("SELECT ReturnedQty FROM D_SaleInvoiceLine WHERE Id = 'Ф1'")), 3);
    const QString before = fingerprintOf(company_->db());
    TestSale more{.id = QStringLiteral("К-3"), .kind = 1, .groups = sale.groups, .currency = sale.currency, .factor = 0.9,
                  .lines = {{"СТОКА", 0.5, 100, QStringLiteral("Ф1")}}, .appliesTo = invoice};
    company_->add(more);
    QString text;
    QCOMPARE(errorCode([&] { admin_->post(more.id); }, &text), int(RpcError::Refused));
    QVERIFY2(text.contains(QStringLiteral("ред 1: връща се повече от продаденото")), qPrintable(text));
    QCOMPARE(fingerprintOf(company_->db()), before);
  }

  void aMemoAboveTheDebtStaysOpen()
  {
    company_->add({.id = QStringLiteral("Ф"), .lines = {{"УСЛУГА", 1, 10}}});
    const QString invoice = admin_->post(QStringLiteral("Ф"))[0].toString();
    company_->add({.id = QStringLiteral("К"), .kind = 1, .lines = {{"УСЛУГА", 3, 10}}, .appliesTo = invoice});
    const QString memo = admin_->post(QStringLiteral("К"))[0].toString();
    QCOMPARE(company_->number(QStringLiteral("SELECT Remaining FROM G_ContragentEntry WHERE Document_Id = '%1'").arg(invoice)), 0);
    QCOMPARE(company_->number(QStringLiteral("SELECT Remaining FROM G_ContragentEntry WHERE Document_Id = '%1'").arg(memo)), -24);
    QCOMPARE(brokenInvariants(company_->db()), QString());
    // From the memo one comes to its invoice, from the invoice to its memo.
    const auto counts = [&](int type, const QString& id) {
      VariantArray arguments{type, 0, id};
      const VariantArray all = admin_->call("GetCountOfDocs", arguments).toList();
      return QStringLiteral("%1 %2").arg(all.value(0).toInt()).arg(all.value(1).toInt());
    };
    QCOMPARE(counts(1, memo), QStringLiteral("1 1"));
    QCOMPARE(counts(0, invoice), QStringLiteral("1 1"));
  }

  // Two groups of one percent: 0.012 of VAT in all is one cent, not one each.
  void groupsShareThePercent()
  {
    company_->db().execute(QStringLiteral("UPDATE G_VATPostingSetup SET VATPercent = 20000000 WHERE VATPercent = 9000000"));
    company_->add({.id = QStringLiteral("Д"), .lines = {{"СТОКА", 1, 0.03}, {"ХРАНА", 1, 0.03}}});
    const QString invoice = admin_->post(QStringLiteral("Д"))[0].toString();
    QCOMPARE(company_->number(QStringLiteral("SELECT COUNT(*) FROM G_VATEntry WHERE Document_Id = '%1'").arg(invoice)), 2);
    QVERIFY(ledgerOf(company_->db(), invoice).startsWith(QStringLiteral("411 +0.07 702 -0.06 4532 -0.01")));
    QCOMPARE(brokenInvariants(company_->db()), QString());
  }

  void whoPaysOwes()
  {
    company_->add({.id = QStringLiteral("Д"), .lines = {{"УСЛУГА", 1, 10}}});
    company_->db().execute(QStringLiteral("UPDATE D_GlobalSaleHeader SET InvToContragent_ID = 'К2' WHERE Id = 'Д'"));
    const QString invoice = admin_->post(QStringLiteral("Д"))[0].toString();
    QCOMPARE(company_->number(QStringLiteral("SELECT COUNT(*) FROM G_ContragentEntry WHERE Document_Id = '%1' AND Contragent_Id = 'К2'").arg(invoice)), 1);
    // A memo of the one who only received the goods takes nothing off that.
    company_->add({.id = QStringLiteral("К"), .kind = 1, .lines = {{"УСЛУГА", 1, 10}}, .appliesTo = invoice});
    QCOMPARE(errorCode([&] { admin_->post(QStringLiteral("К")); }), int(RpcError::Refused));
  }

  void refusals_data()
  {
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* change, const char* text) { QTest::newRow(name) << change << text; };
    row("posted", "UPDATE D_GlobalSaleHeader SET GlobDocIsPosted = 1 WHERE Id = 'Д'", "Документ Д вече е осчетоводен");
    row("annulled", "UPDATE D_GlobalSaleHeader SET Annul = 1 WHERE Id = 'Д'", "Документ Д е анулиран");
    row("no lines", "DELETE FROM D_GlobalSaleLine WHERE Master_Id = 'Д'", "Документ Д няма редове");
    row("another company's", "UPDATE D_GlobalSaleHeader SET Comp_Id = '2' WHERE Id = 'Д'", "не съществува");
    row("no customer", "UPDATE D_GlobalSaleHeader SET Contragent_Id = NULL WHERE Id = 'Д'", "няма контрагент");
    row("customer of another company", "UPDATE N_Contragent SET Comp_Id = '2' WHERE Id = 'К1'", "контрагент, който не съществува");
    row("no sub-type", "UPDATE D_GlobalSaleHeader SET DocSubType_Id = NULL WHERE Id = 'Д'", "няма вид документ");
    row("no series", "UPDATE N_SubDocument SET Post_Series_Id = NULL WHERE Code = 'SALE-SOF' AND Comp_Id = '1'", "няма серия за осчетоводени");
    row("used-up series", "UPDATE N_Series SET MaxNo = LastNo WHERE Code = 'INV-SOF' AND Comp_Id = '1' AND LastNo > 0", "изчерпани");
    row("closed period", "UPDATE C_CompanySetup SET ClosedPeriodTo = '20260701' WHERE Id = '1'", "датата 01.07.2026 е в приключен период (до 01.07.2026)");
    row("closed for VAT", "UPDATE D_GlobalSaleHeader SET VATDate = '20251231' WHERE Id = 'Д'", "датата на данъчното събитие 31.12.2025");
    row("no rate", "UPDATE D_GlobalSaleHeader SET Currency_Id = 'USD', CurrencyFactor = 0 WHERE Id = 'Д'", "няма курс");
    row("totals that are not the lines'", "UPDATE D_GlobalSaleHeader SET TotalVAT = TotalVAT + 10000 WHERE Id = 'Д'", "не са сбор от редовете");
    row("unknown item", "UPDATE D_GlobalSaleLine SET Code = 'НЯМА' WHERE Id = 'Д2'", "Документ Д, ред 2: няма артикул с код „НЯМА“");
    row("no base quantity", "UPDATE D_GlobalSaleLine SET Quantity_Base = 0 WHERE Id = 'Д2'", "ред 2: няма количество в основна мярка");
    row("not enough", "UPDATE D_GlobalSaleLine SET Quantity_Base = 50000001 WHERE Id = 'Д2'",
        "ред 2: недостатъчно количество на артикул ХРАНА в склада. Налично: 50, необходимо: 50,000001");
    row("not enough of two lines", "UPDATE D_GlobalSaleLine SET Code = 'СТОКА', Quantity_Base = 2000001 WHERE Id = 'Д2'", "ред 2: недостатъчно количество на артикул СТОКА в склада. Налично: 2,");
    row("not enough on the day", "UPDATE G_ItemValueEntry SET PostingDate = '20260702' WHERE Id = 'ХРАНА'", "ред 2: недостатъчно");
    row("not enough later", "INSERT INTO G_ItemValueEntry (Id, Comp_Id, Item_Id, PostingDate, Quantity, CostAmount) VALUES "
        "('1', '1', 'ХРАНА', '20260801', -49000000, -120000000), ('2', '1', 'ХРАНА', '20260901', 100000000, 250000000)", "Налично: 1, необходимо: 2");
    row("no accounts of the groups", "DELETE FROM G_GenPostingSetup WHERE Comp_Id = '1'", "ред 1: няма счетоводна настройка за групите „DOMESTIC“ и „GOODS“");
    row("no account of sales", "UPDATE G_GenPostingSetup SET SalesAccount_Id = NULL", "ред 1: сметката за приходи от продажби на групите „DOMESTIC“ и „GOODS“");
    row("no account of cost", "UPDATE G_GenPostingSetup SET CostAccount_Id = NULL", "сметката за отчетна стойност");
    row("blocked account", "UPDATE G_Account SET Blocked = 1 WHERE Code = '304'", "(304) е затворена");
    row("account of another company", "UPDATE G_Account SET Comp_Id = '2', Code = 'X' WHERE Code = '702' AND Comp_Id = '1'", "не е в сметкоплана");
    row("no VAT account", "UPDATE G_VATPostingSetup SET SalesVATAccount_Id = NULL", "сметката за ДДС на групите „BG“ и „S20“");
    row("no receivables", "DELETE FROM G_ContragentPostingSetup WHERE Comp_Id = '1'", "контрагенти от група „DOMESTIC“");
    row("no account of the cash desk", "UPDATE D_GlobalSaleHeader SET DirectPay = 1 WHERE Id = 'Д'; UPDATE N_PaymentMethod SET Account_Id = NULL",
        "сметката на начин на плащане „По банков път“");
    row("applied to no invoice", "UPDATE D_GlobalSaleHeader SET AppliesToDocId = 'няма', DocSubType_Id = (SELECT Id FROM N_SubDocument WHERE "
        "Code = 'RETURN-SOF' AND Comp_Id = '1') WHERE Id = 'Д'", "няма такава осчетоводена фактура");
  }
  void refusals()
  {
    QFETCH(QString, change);
    QFETCH(QString, text);
    company_->add({.id = QStringLiteral("Д"), .lines = {{"СТОКА", 1, 50}, {"ХРАНА", 2, 1}}});
    for (const QString& statement : change.split(QStringLiteral("; ")))
      company_->db().execute(statement);
    const QString before = fingerprintOf(company_->db());
    QString told;
    QCOMPARE(errorCode([&] { admin_->post(QStringLiteral("Д")); }, &told), text == u"изчерпани" ? int(RpcError::Invalid) : int(RpcError::Refused));
    QVERIFY2(told.contains(text), qPrintable(told));
    QCOMPARE(fingerprintOf(company_->db()), before);
  }

  void lessThanNothingWhenAllowed()
  {
    company_->add({.id = QStringLiteral("Д"), .lines = {{"СТОКА", 5, 50}}});
    company_->add({.id = QStringLiteral("Е"), .kind = 1, .lines = {{"СТОКА", 2, 50}}});
    company_->db().execute(QStringLiteral("UPDATE C_CompanySetup SET AllowNegativeStock = 1"));
    admin_->post(QStringLiteral("Д"));
    QCOMPARE(company_->number(QStringLiteral("SELECT SUM(CostAmount) FROM G_ItemValueEntry WHERE Item_Id = 'СТОКА'")), -6'670'000);
    admin_->post(QStringLiteral("Е"));
    QCOMPARE(company_->number(QStringLiteral("SELECT SUM(CostAmount) FROM G_ItemValueEntry WHERE Item_Id = 'СТОКА'")), 0);
    QCOMPARE(brokenInvariants(company_->db()), QString());
  }

  void rightsAndLocks()
  {
    company_->add({.id = QStringLiteral("Д"), .lines = {{"УСЛУГА", 1, 50}}});
    const QString before = fingerprintOf(company_->db());
    PostingCaller auditor(*company_, "AUDITOR"), guest(*company_, "GUEST", "3"), elsewhere(*company_, "CLERK", "2"), clerk(*company_, "CLERK");
    const auto refused = [&](PostingCaller& caller, int form, const QString& id = QStringLiteral("Д")) {
      return errorCode([&] { caller.post(id, {}, form); });
    };
    QCOMPARE(refused(auditor, 500), int(RpcError::Forbidden));
    QCOMPARE(refused(guest, 500), int(RpcError::Forbidden));
    QCOMPARE(refused(elsewhere, 500), int(RpcError::Forbidden));
    QCOMPARE(refused(clerk, 120), int(RpcError::Refused));
    QCOMPARE(refused(clerk, 99999), int(RpcError::Forbidden));
    QCOMPARE(refused(clerk, 500, QStringLiteral("няма")), int(RpcError::Refused));
    QCOMPARE(refused(clerk, 500, QStringLiteral("Д' OR '1'='1")), int(RpcError::Refused));
    VariantArray lock{QStringLiteral("Д"), 501, Variant()};
    QCOMPARE(admin_->call("CheckOutDocument", lock).toInt(), 0);
    QString text;
    QCOMPARE(errorCode([&] { clerk.post(QStringLiteral("Д")); }, &text), int(RpcError::Refused));
    QVERIFY2(text.contains(QStringLiteral("отворен за редакция от")), qPrintable(text));
    QCOMPARE(fingerprintOf(company_->db()), before);
    admin_->post(QStringLiteral("Д"));
    // A clerk of another object counts nothing of it.
    VariantArray counted{0, 0, company_->db().value(QStringLiteral("SELECT PostedDoc_Id FROM D_GlobalSaleHeader WHERE Id = 'Д'"))};
    VariantArray same = counted;
    QCOMPARE(clerk.call("GetCountOfDocs", counted).toList().value(6).toInt(), 3);
    const VariantArray hidden = elsewhere.call("GetCountOfDocs", same).toList();
    QVERIFY(std::all_of(hidden.begin(), hidden.end(), [](const Variant& count) { return count.toInt() == 0; }));
  }

  void repeatedCalls()
  {
    company_->add({.id = QStringLiteral("Д"), .lines = {{"УСЛУГА", 1, 50}}});
    const VariantArray first = admin_->post(QStringLiteral("Д"), QStringLiteral("заявка"));
    const QString after = fingerprintOf(company_->db());
    QCOMPARE(admin_->post(QStringLiteral("Д"), QStringLiteral("заявка")), first);
    QCOMPARE(errorCode([&] { admin_->post(QStringLiteral("Д")); }), int(RpcError::Refused));
    VariantArray remove{QStringLiteral("Д"), 500};
    QCOMPARE(errorCode([&] { admin_->call("DeleteGlobalDoc", remove); }), int(RpcError::Refused));
    QCOMPARE(fingerprintOf(company_->db()), after);
    company_->add({.id = QStringLiteral("И"), .lines = {{"УСЛУГА", 1, 50}}});
    VariantArray other{QStringLiteral("И"), 500};
    QCOMPARE(admin_->call("DeleteGlobalDoc", other).toInt(), 0);
    QCOMPARE(company_->number(QStringLiteral("SELECT COUNT(*) FROM D_GlobalSaleLine WHERE Master_Id = 'И'")), 0);
  }

  void oneOfSeveralWins()
  {
    constexpr int documents = 12;
    PostingCompany company;
    for (int i = 0; i < documents; ++i)
      company.add({.id = QStringLiteral("Д%1").arg(i), .lines = {{"ХРАНА", 1, 2.35}, {"УСЛУГА", 2, 7.77}}});
    std::atomic<int> won = 0;
    PostingCaller callers[] = {{company, "SUPERVSR"}, {company, "SUPERVSR"}, {company, "CLERK"}};
    std::vector<std::thread> threads;
    for (PostingCaller& caller : callers)
      threads.emplace_back([&] {
        const auto connection = company.core().openWriter();
        for (int i = 0; i < documents; ++i)
          won += errorCode([&] { caller.post(QStringLiteral("Д%1").arg(i), {}, 500, connection.get()); }) == 0;
      });
    for (std::thread& thread : threads)
      thread.join();
    QCOMPARE(won.load(), documents);
    QCOMPARE(company.number(QStringLiteral("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE GlobalDoc_Id IS NOT NULL")), documents);
    QCOMPARE(brokenInvariants(company.db()), QString());
  }

 private:
  std::unique_ptr<PostingCompany> company_;
  std::unique_ptr<PostingCaller> admin_;
  std::unique_ptr<Transaction> tried_;
};

static const RegisterTest<PostingTest> postingTest;

}  // namespace kalvor::testing

#include "posting_test.moc"
