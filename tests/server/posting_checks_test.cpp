// The checks before posting and the set-up values, over the wire; and that every look-up of this room goes by an index.
#include "price_company.h"
#include "price_rules.h"
#include "server/operations/operation.h"
#include "several_tests.h"

namespace kalvor::testing {

namespace {

// Amounts in millionths: limit 1000, owed as the name says. The clock stands at 2026-07-01.
constexpr const char* debtsAndCosts = R"(
INSERT INTO N_Contragent (Id, Comp_Id, Code, Name, CreditLimit) VALUES ('L0', '1', 'L0', 'без дълг', 1000000000),
  ('L1', '1', 'L1', 'в срок', 1000000000), ('L2', '1', 'L2', 'просрочен', 1000000000),
  ('L3', '1', 'L3', 'над лимита и просрочен', 1000000000), ('L4', '1', 'L4', 'без лимит', NULL),
  ('L5', '1', 'L5', 'без кредит', 0), ('L6', '1', 'L6', 'с аванс', 1000000000), ('LX', '2', 'LX', 'чужд', 1000000000);
INSERT INTO G_ContragentEntry (Id, Comp_Id, Contragent_Id, Gen_PostingType, DocumentType, PostingDate, DueDate, Amount,
  Amount_LCY, Remaining, Remaining_LCY, Opened) VALUES
  ('E1', '1', 'L1', 1, 0, '20260601', '20260701', 900000000, 900000000, 900000000, 900000000, 1),
  ('E2', '1', 'L2', 1, 0, '20260601', '20260630', 500000000, 500000000, 10000, 10000, 1),
  ('E3', '1', 'L3', 1, 0, '20260601', '20260630', 2000000000, 2000000000, 1000010000, 1000010000, 1),
  ('E4', '1', 'L4', 1, 0, '20260601', '20270101', 9000000000, 9000000000, 9000000000, 9000000000, 1),
  ('E5', '1', 'L0', 1, 0, '20250601', '20250701', 5000000000, 5000000000, 0, 0, 0),
  ('E6', '1', 'L0', 0, 0, '20250601', '20250701', 5000000000, 5000000000, 5000000000, 5000000000, 1),
  ('E7', '2', 'L0', 1, 0, '20250601', '20250701', 5000000000, 5000000000, 5000000000, 5000000000, 1),
  ('E8', '1', 'L6', 1, 3, '20260601', '20260601', -400000000, -400000000, -400000000, -400000000, 1);

INSERT INTO G_ItemValueEntry (Id, Comp_Id, Item_Id, PostingDate, Quantity, CostAmount) VALUES
  ('T1', '1', 'I2', '20260101', 100000000, 300000000), ('T2', '1', 'I2', '20260201', 50000000, 200000000),
  ('T3', '1', 'I2', '20260202', -50000000, -166666667), ('T4', '1', 'I2', '20260702', 1000000, 900000000),
  ('T5', '1', 'I3', '20260101', 10000000, 50000000), ('T6', '1', 'I3', '20260102', -10000000, -50000000),
  ('T7', '2', 'I1', '20260101', 1000000, 900000000);
UPDATE N_Item SET UnitCost = 2000000 WHERE Id = 'I3';
INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentDate, C_Businessgroup_Id) VALUES
  ('Clear', '1', '20260701', '1'), ('Below', '1', '20260701', '1'), ('Box', '1', '20260701', '1'),
  ('BoxBelow', '1', '20260701', '1'), ('Sold out', '1', '20260701', '1'), ('Sold out below', '1', '20260701', '1'),
  ('No cost', '1', '20260701', '1'), ('Others', '1', '20260701', '1'), ('Empty', '1', '20260701', '1'),
  ('Other object', '1', '20260701', '2'), ('Foreign', '2', '20260701', '4');
INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No, Type, Code, QtyPerUnitOfMeasure, Quantity, UnitCost_LCY)
VALUES ('1', '1', 'Clear', 1, 1, 'БЛИЗО', 1000000, 1000000, 3333330), ('2', '1', 'Clear', 2, 1, 'СПИСЪК', NULL, 1000000, 6000000),
  ('3', '1', 'Below', 1, 1, 'СПИСЪК', 1000000, 1000000, 6000000), ('4', '1', 'Below', 2, 1, 'близо', 1000000, 1000000, 3333320),
  ('5', '1', 'Box', 1, 1, 'БЛИЗО', 12000000, 1000000, 40000000), ('6', '1', 'BoxBelow', 1, 1, 'БЛИЗО', 12000000, 1000000, 39999990),
  ('7', '1', 'Sold out', 1, 1, 'СТЪПКИ', 1000000, 1000000, 2000000),
  ('8', '1', 'Sold out below', 1, 1, 'СТЪПКИ', 0, 1000000, 1999990),
  ('9', '1', 'No cost', 1, 1, 'КУТИЯ', 1000000, 1000000, 0),
  ('10', '1', 'Others', 1, 3, 'БЛИЗО', 1000000, 1000000, 0), ('11', '1', 'Others', 2, 1, 'НЯМА', 1000000, 1000000, 0),
  ('12', '1', 'Others', 3, 0, NULL, 1000000, 1000000, 0),
  ('13', '1', 'Other object', 1, 1, 'БЛИЗО', 1000000, 1000000, 10000000),
  ('14', '2', 'Foreign', 1, 1, 'ЧУЖД', 1000000, 1000000, 0);
INSERT INTO N_PaymentMethod (Id, Comp_Id, Code, Name) VALUES ('PM1', '1', 'PM1', 'x'), ('PM2', '1', 'PM2', 'x');
INSERT INTO N_CashBankOperation (Id, Comp_Id, BusinessGroup_Id, PaymentMethod_Id, DirectPay) VALUES
  ('O1', '1', '1', 'PM1', 1), ('O2', '1', '1', 'PM2', 0), ('O3', '2', '4', 'PMX', 1);
INSERT INTO N_PaymentTerms (Id, Comp_Id, Code, Name, DueDateCalculation) VALUES ('PT', '1', 'PT', 'x', 45),
  ('PTX', '2', 'PTX', 'x', 46);
)";

// Notes every statement that runs over another connection.
class ListeningConnection : public server::Connection {
 public:
  explicit ListeningConnection(std::unique_ptr<server::Connection> real) : real_(std::move(real)) {}
  server::Dialect dialect() const override { return real_->dialect(); }
  std::shared_ptr<server::Statement> prepare(const QString& sql, server::StatementUse use) override
  {
    statements.insert(sql);
    return real_->prepare(sql, use);
  }
  void define(const QString& statement) override { real_->define(statement); }
  void begin(bool writing) override { real_->begin(writing); }
  void commit() override { real_->commit(); }
  void rollback() noexcept override { real_->rollback(); }
  bool inTransaction() const override { return real_->inTransaction(); }
  qint64 changedRows() const override { return real_->changedRows(); }
  QStringList faults() override { return real_->faults(); }
  void setDurable(bool on) override { real_->setDurable(on); }

  QSet<QString> statements;

 private:
  std::unique_ptr<server::Connection> real_;
};

using Conditions = QList<QStringList>;

}  // namespace

class PostingChecksTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    company_ = std::make_unique<PriceCompany>(QByteArray(priceRules) + debtsAndCosts);
    callers_ = std::make_unique<PriceCallers>(*company_);
  }
  void cleanupTestCase()
  {
    callers_.reset();
    company_.reset();
  }

  void contragents_data()
  {
    QTest::addColumn<QString>("contragent");
    QTest::addColumn<double>("amount");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("result");
    const auto row = [](const char* name, const char* contragent, double amount, int mode, int result) {
      QTest::newRow(name) << contragent << amount << mode << result;
    };
    row("no debt", "L0", 1000, 3, 0);
    row("the sale alone above the limit", "L0", 1000.01, 3, 1);
    row("limit not asked for", "L0", 1000.01, 2, 0);
    row("debt within the limit, due today", "L1", 100, 3, 0);
    row("debt and sale above the limit", "L1", 100.01, 1, 1);
    row("overdue", "L2", 1, 3, 2);
    row("overdue not asked for", "L2", 1, 1, 0);
    row("limit before overdue", "L3", 0, 3, 1);
    row("overdue alone asked for", "L3", 0, 2, 2);
    row("no limit", "L4", 1e9, 3, 0);
    row("no credit", "L5", 0.01, 1, 1);
    row("no credit, nothing sold", "L5", 0, 1, 0);
    row("paid in advance", "L6", 1400, 3, 0);
    row("more than paid in advance", "L6", 1400.01, 3, 1);
    row("no check", "L3", 1e6, 0, 0);
    row("further bits", "L3", 0, 4, 0);
    row("further bits beside", "L3", 0, 6, 2);
    row("unknown", "L9", 1, 3, -1);
    row("of another company", "LX", 1, 3, -1);
    row("none", "", 1, 1, -1);
    row("hostile", "L0' OR '1'='1", 1, 1, -1);
  }
  void contragents()
  {
    QFETCH(QString, contragent);
    QFETCH(double, amount);
    QFETCH(int, mode);
    VariantArray arguments{contragent, amount, mode};
    QTEST(callers_->clerk.broker.Call(QStringLiteral("CheckSaleContragentParams"), arguments).toInt(), "result");
    QCOMPARE(arguments.at(2).toInt(), mode);
  }

  void unitCosts_data()
  {
    QTest::addColumn<QString>("document");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("result");
    const auto row = [](const char* document, int kind, int result) {
      QTest::addRow("%s, kind %d", document, kind) << document << kind << result;
    };
    row("Clear", 0, 0);
    row("Below", 0, 1);
    row("Box", 0, 0);
    row("BoxBelow", 0, 1);
    row("Sold out", 0, 0);
    row("Sold out below", 0, 1);
    row("No cost", 0, 0);
    row("Others", 0, 0);
    row("Empty", 0, 0);
    row("Below", 1, -1);
    row("Below", 255, -1);
    row("Foreign", 0, -1);
    row("Other object", 0, -1);  // the clerk sees the invoices of his object only
    row("Nowhere", 0, -1);
    row("' OR 1=1 --", 0, -1);
  }
  void unitCosts()
  {
    QFETCH(QString, document);
    QFETCH(int, kind);
    VariantArray arguments{document, kind};
    QTEST(callers_->clerk.broker.Call(QStringLiteral("CheckItemUnitCost"), arguments).toInt(), "result");
  }

  void wrongCalls()
  {
    const auto refusal = [&](Caller& caller, const char* operation, VariantArray arguments) {
      return Caller::refusal([&] { caller.broker.Call(QLatin1StringView(operation), arguments); });
    };
    constexpr int bad = RpcError::BadArguments;
    QCOMPARE(refusal(callers_->clerk, "CheckSaleContragentParams", {"L0", QStringLiteral("много"), 3}), bad);
    QCOMPARE(refusal(callers_->clerk, "CheckSaleContragentParams", {"L0", 1e300, 3}), bad);
    QCOMPARE(refusal(callers_->clerk, "CheckSaleContragentParams", {"L0", 1.0, QStringLiteral("x")}), bad);
    QCOMPARE(refusal(callers_->clerk, "CheckSaleContragentParams", {VariantArray{"L0"}, 1.0, 3}), bad);
    QCOMPARE(refusal(callers_->clerk, "CheckSaleContragentParams", {"L0", 1.0}), bad);
    QCOMPARE(refusal(callers_->clerk, "CheckItemUnitCost", {"Clear", Variant()}), bad);
    QCOMPARE(refusal(callers_->clerk, "GetCurrencyRate", {"XTS", QStringLiteral("вчера"), 0, 0.0}), bad);
    QCOMPARE(refusal(callers_->guest, "CheckItemUnitCost", {"Clear", 0}), int(RpcError::Forbidden));
  }

  // The set-up values with the texts of the client: conditions qualified by the table, values quoted or not, the
  // company named or not; the server's company counts whatever they say.
  void setUpValues_data()
  {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("columns");
    QTest::addColumn<Conditions>("conditions");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* name, const char* table, const char* columns, const Conditions& conditions,
                        int count, const char* value) {
      QTest::newRow(name) << table << columns << conditions << count << value;
    };
    const char* vat = "VATPercent, VATCalculationType, SalesVATLedger";
    const auto groups = [](const char* business, const char* product, const char* company) {
      return Conditions{{"G_VATPostingSetup.VATBus_PostingGroup", "=", business, "AND"},
                        {"G_VATPostingSetup.VATProd_PostingGroup", "=", product, "AND"},
                        {"G_VATPostingSetup.Comp_Id", "=", company, ""}};
    };
    row("VAT", "G_VATPostingSetup", vat, groups("VB", "VP", "1"), 1, "20|1|2");
    row("VAT, quoted", "G_VATPostingSetup", vat, groups("'VB'", "'VP9'", "'1'"), 1, "9|0|1");
    row("VAT, no such pair", "G_VATPostingSetup", vat, groups("VB", "VX", "1"), 0, "");
    row("VAT, of another company", "G_VATPostingSetup", vat, groups("VB", "VP", "2"), 0, "");
    row("VAT without company", "G_VATPostingSetup", vat, groups("VB", "VP", "1").first(2), 1, "20|1|2");
    row("terms", "N_PaymentTerms", "DueDateCalculation", {{"N_PaymentTerms.Id", "=", "PT", ""}}, 1, "45");
    row("terms, quoted", "N_PaymentTerms", "DueDateCalculation", {{"N_PaymentTerms.Id", "=", "'PT'", ""}}, 1, "45");
    row("terms of another company", "N_PaymentTerms", "DueDateCalculation", {{"N_PaymentTerms.Id", "=", "PTX", ""}}, 0, "");
    row("no terms", "N_PaymentTerms", "DueDateCalculation", {{"N_PaymentTerms.Id", "=", "", ""}}, 0, "");
    const auto cash = [](const char* company, const char* group, const char* method) {
      return Conditions{{"N_CashBankOperation.Comp_Id", "=", company, "AND"},
                        {"N_CashBankOperation.BusinessGroup_Id", "=", group, "AND"},
                        {"N_CashBankOperation.PaymentMethod_Id", "=", method, ""}};
    };
    row("cash", "N_CashBankOperation", "DirectPay", cash("'1'", "'1'", "PM1"), 1, "1");
    row("bank", "N_CashBankOperation", "DirectPay", cash("'1'", "'1'", "PM2"), 1, "0");
    row("another object", "N_CashBankOperation", "DirectPay", cash("'1'", "'2'", "PM1"), 0, "");
    row("cash of another company", "N_CashBankOperation", "DirectPay", cash("'2'", "'4'", "PMX"), 0, "");
    const Conditions subDocument{{"N_SubDocument.Id", "=", "SD", "AND"}, {"N_SubDocument.Comp_Id", "=", "1", ""}};
    row("series", "N_SubDocument", "Post_Series_Id,Series_Id", subDocument, 1, "S-2|S-1");
    row("series and method", "N_SubDocument", "Series_Id, PaymentMethod", subDocument, 1, "S-1|");
  }
  void setUpValues()
  {
    QFETCH(QString, table);
    QFETCH(QString, columns);
    QFETCH(Conditions, conditions);
    FilterArray filter;
    for (const QStringList& condition : conditions) {
      filter.append({condition.at(0), condition.at(1), condition.at(2), condition.at(3), {}});
    }
    for (Caller* caller : {&callers_->clerk, &callers_->guest}) {
      VariantArray arguments{0, table, columns, filterToVariant(filter), Variant(), false};
      QTEST(caller->broker.Call(QStringLiteral("RequestValue"), arguments).toInt(), "count");
      QStringList values;
      for (const Variant& value : arguments.at(4).typeId() == QMetaType::QVariantList ? arguments.at(4).toList()
                                                                                       : VariantArray{arguments.at(4)}) {
        values.append(variantText(value));
      }
      QTEST(values.join(u'|'), "value");
    }
  }

  // As posted to a company of millions of rows: no statement may read a table from its beginning.
  void everyLookUpGoesByAnIndex()
  {
    if (onPostgres()) {
      QSKIP("PostgreSQL chooses its way by how many rows there are, and here are few");
    }
    ListeningConnection db(company_->core().openReader());
    server::Session session;
    session.peer = QStringLiteral("test");
    const auto call = [&](const char* name, VariantArray arguments) {
      return server::runOperation(company_->core(), db, session, *server::findOperation(QLatin1StringView(name)), arguments)
          .toInt();
    };
    const auto digest = QString::fromLatin1(QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex());
    QCOMPARE(call("LogIn", {"CLERK", digest, "1", "1", QString()}), 0);
    db.statements.clear();
    const QDate day(2026, 2, 1);
    QCOMPARE(call("GetSaleLinePrice", {VariantArray{"C1", "С ДДС", "B", 2.0, day, 24.0, "VB", "VP", 0, 1.0, 1}}), 0);
    QCOMPARE(call("GetPurchLinePrice", {VariantArray{"C1", "БЛИЗО", "P", 2.0, day, 2.0, "VB", "VP", 0, 1.0, 1}}), 0);
    QCOMPARE(call("GetSaleLineDiscount", {VariantArray{"C1", "ОФЕРТА", "P", 2.0, "ПРОФ", day, 2.0, 1, "VB", 1}}), 0);
    QCOMPARE(call("GetCurrencyRate", {"XTS", day, 0, Variant()}), 0);
    QCOMPARE(call("CheckSaleContragentParams", {"L2", 1.0, 3}), 2);
    QCOMPARE(call("CheckItemUnitCost", {"Below", 0}), 1);
    // The last column by which a table must be entered; whatever comes before it in the index is used too.
    static const QList<std::pair<QString, QString>> entered{
        {"N_ItemPrice", "Contragent_Id=?)"},     {"N_ItemDiscount", "Contragent_Id=?)"}, {"N_Item", "Code=?)"},
        {"N_ItemMeasure", "Item_Id=?)"},         {"N_CurrencyRate", "RateDate<?)"},      {"N_Contragent", "(Id=?)"},
        {"G_VATPostingSetup", "VATProd_PostingGroup=?)"}, {"G_ItemValueEntry", "PostingDate<?)"},
        {"D_SaleInvoiceLine", "Master_Id=?)"},   {"D_SaleInvoiceHeader", "Id=?)"},       {"N_SubDocument", "Code=?)"},
        {"N_ItemGroup", "(Id=?)"},               {"G_ContragentEntry", "Gen_PostingType=?"}};
    QSet<QString> met;
    for (const QString& sql : std::as_const(db.statements)) {
      const RecordSet plan = company_->core().openReader()->query(QStringLiteral("EXPLAIN QUERY PLAN ") + sql);
      for (qsizetype i = 0; i < plan.rows; ++i) {
        const QString step = plan.value(i, plan.indexOf(u"detail")).toString();
        const QByteArray where = (step + QStringLiteral(" in ") + sql).toUtf8();
        QVERIFY2(!step.startsWith(u"SCAN ") || step == u"SCAN Above" || step == u"SCAN CONSTANT ROW", where.constData());
        for (const auto& [table, column] : entered) {
          if (step.startsWith(QStringLiteral("SEARCH %1 ").arg(table))) {
            QVERIFY2(step.contains(column), where.constData());
            met.insert(table);
          }
        }
        met.insert(step.section(u' ', 4, 4));
      }
    }
    for (const auto& [table, column] : entered) {
      QVERIFY2(met.contains(table), qPrintable(table));
    }
    QVERIFY(met.contains(QStringLiteral("IX_N_ItemDiscount_Group")) && met.contains(QStringLiteral("IX_N_ItemDiscount_Item")));
  }

 private:
  std::unique_ptr<PriceCompany> company_;
  std::unique_ptr<PriceCallers> callers_;
};

static RegisterTest<PostingChecksTest> postingChecksTest;

}  // namespace kalvor::testing

#include "posting_checks_test.moc"
