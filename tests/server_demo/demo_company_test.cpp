#include <QCryptographicHash>
#include <cmath>

#include "demo_database.h"
#include "server/metadata/metadata_check.h"
#include "server/store/introspection.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

namespace {

// Everything in the database but the times of the migrations.
QByteArray fingerprint(Connection& connection)
{
  QCryptographicHash hash(QCryptographicHash::Sha256);
  for (const TableInfo& table : readTables(connection)) {
    if (table.name.startsWith(u"srv_")) {
      continue;
    }
    auto rows = connection.prepare(QStringLiteral("SELECT * FROM %1 ORDER BY 1, 2").arg(table.name));
    while (rows->step()) {
      for (int i = 0; i < rows->columnCount(); ++i) {
        hash.addData(rows->isNull(i) ? QByteArray("-") : rows->text(i).toUtf8() + '|');
      }
    }
  }
  return hash.result();
}

bool hasCheckDigit(const QString& bulstat)
{
  int sum = 0;
  int other = 0;
  for (int i = 1; i <= 8; ++i) {
    sum += bulstat.at(i - 1).digitValue() * i;
    other += bulstat.at(i - 1).digitValue() * (i + 2);
  }
  const int digit = sum % 11 < 10 ? sum % 11 : other % 11 % 10;
  return bulstat.size() == 9 && bulstat.back().digitValue() == digit;
}

__extension__ using Wide = __int128;

// Half away from zero to whole cents, in whole numbers: of value / 10^digits.
qint64 centsOf(Wide value, int digits)
{
  Wide unit = 1;
  for (int i = 0; i < digits; ++i) {
    unit *= 10;
  }
  const Wide half = unit / 2;
  return qint64(value < 0 ? (value - half) / unit : (value + half) / unit);
}

}  // namespace

class DemoCompanyTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { database_ = kalvor::testing::demoDatabase(); }

  void comesOutTheSame()
  {
    auto again = kalvor::testing::demoDatabase();
    QCOMPARE(fingerprint(*database_), fingerprint(*again));
    auto options = kalvor::testing::smallDemo();
    options.seed = 1;
    QVERIFY(fingerprint(*kalvor::testing::demoDatabase(options)) != fingerprint(*again));
  }

  void metadataFitsTheTables() { QCOMPARE(checkMetadata(*database_), QStringList()); }

  void counts_data()
  {
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("count");
    QTest::newRow("contractors") << "N_Contragent WHERE Comp_Id = '1'" << 60;
    QTest::newRow("items") << "N_Item WHERE Comp_Id = '1'" << 120;
    QTest::newRow("invoices") << "D_SaleInvoiceHeader WHERE Comp_Id = '1'" << 400;
    QTest::newRow("of the small company") << "D_SaleInvoiceHeader WHERE Comp_Id = '2'" << 8;
    QTest::newRow("objects") << "N_BusinessGroup WHERE Comp_Id = '1'" << 3;
    QTest::newRow("users without settings")
        << "N_Users WHERE NOT EXISTS (SELECT 1 FROM s_UserSettings "
           "WHERE s_UserSettings.Id = N_Users.Id AND s_UserSettings.Comp_Id = N_Users.Comp_Id)"
        << 0;
    QTest::newRow("rights of the guest") << "S_Rights WHERE User_Id = 'GUEST'" << 0;
    QTest::newRow("rows of the clerk filtered")
        << "S_Rights WHERE User_Id = 'CLERK' AND SecurityFilter IS NOT NULL" << 15;
    QTest::newRow("auditor cannot change")
        << "S_Rights WHERE User_Id = 'AUDITOR' AND EditRight + InsertRight + DeleteRight > 0" << 0;
    QTest::newRow("inactive") << "N_Users WHERE Active = 0" << 1;
    QTest::newRow("lines without document")
        << "D_SaleInvoiceLine WHERE Master_Id NOT IN (SELECT Id FROM D_SaleInvoiceHeader)" << 0;
    QTest::newRow("lines of unknown items")
        << "D_SaleInvoiceLine WHERE NOT EXISTS (SELECT 1 FROM N_Item "
           "WHERE N_Item.Code = D_SaleInvoiceLine.Code AND N_Item.Comp_Id = D_SaleInvoiceLine.Comp_Id)"
        << 0;
    QTest::newRow("customers of another company")
        << "D_SaleInvoiceHeader JOIN N_Contragent ON N_Contragent.Id = Contragent_Id "
           "WHERE N_Contragent.Comp_Id <> D_SaleInvoiceHeader.Comp_Id"
        << 0;
    QTest::newRow("items without their base measure") << "N_Item WHERE NOT EXISTS (SELECT 1 FROM N_ItemMeasure "
                                                         "WHERE Item_Id = N_Item.Id AND N_ItemMeasure.Measure_Id = "
                                                         "N_Item.Measure_Id AND QtyPerUnitOfMeasure = 1000000)"
                                                      << 0;
    QTest::newRow("objects without a way to be paid")
        << "N_BusinessGroup, N_PaymentMethod WHERE N_BusinessGroup.Comp_Id = N_PaymentMethod.Comp_Id AND NOT EXISTS "
           "(SELECT 1 FROM N_CashBankOperation WHERE BusinessGroup_Id = N_BusinessGroup.Id AND PaymentMethod_Id = "
           "N_PaymentMethod.Id)"
        << 0;
    QTest::newRow("goods without an average cost")
        << "N_Item WHERE Type = 1 AND UnitCost > 0 AND NOT EXISTS (SELECT 1 FROM G_ItemValueEntry WHERE Item_Id = N_Item.Id "
           "GROUP BY Item_Id HAVING SUM(CostAmount) * 1.0 / SUM(Quantity) * 1000000 BETWEEN UnitCost * 0.93 AND UnitCost * 1.05)"
        << 0;
    QTest::newRow("finished invoices without their entry")
        << "D_SaleInvoiceHeader WHERE DocStatus = 1 AND NOT EXISTS (SELECT 1 FROM G_ContragentEntry WHERE Document_Id = "
           "D_SaleInvoiceHeader.Id AND Amount_LCY = TotalVAT_LCY AND Opened = CASE WHEN Remaining <> 0 THEN 1 ELSE 0 END)"
        << 0;
    QTest::newRow("entries that do not add up")
        << "(SELECT 1 FROM G_ContragentEntry GROUP BY REPLACE(DocumentNo, 'PAY-', ''), Comp_Id "
           "HAVING SUM(Amount) <> SUM(Remaining) OR SUM(Amount_LCY) <> SUM(Remaining_LCY)) AS Wrong"
        << 0;
    QTest::newRow("numbers given twice")
        << "(SELECT DocumentNo FROM D_SaleInvoiceHeader GROUP BY Comp_Id, DocumentNo HAVING COUNT(*) > 1) AS Twice" << 0;
  }

  void counts()
  {
    QFETCH(QString, what);
    QTEST(database_->value(QStringLiteral("SELECT COUNT(*) FROM ") + what).toInt(), "count");
  }

  // So that every answer of a look-up and a check can be met in the first company.
  void somethingOfEverything_data()
  {
    QTest::addColumn<QString>("what");
    QTest::newRow("contractor's prices") << "N_ItemPrice WHERE Side = 1 AND Contragent_Id IS NOT NULL AND Currency_Id IS NULL";
    QTest::newRow("supplier's prices") << "N_ItemPrice WHERE Side = 0 AND Contragent_Id IS NOT NULL";
    QTest::newRow("group prices") << "N_ItemPrice WHERE PriceGroup_Id IS NOT NULL";
    QTest::newRow("steps") << "N_ItemPrice WHERE MinQuantity > 0 AND Contragent_Id IS NULL";
    QTest::newRow("periods") << "N_ItemPrice WHERE EndDate IS NOT NULL";
    QTest::newRow("prices with VAT") << "N_ItemPrice WHERE PriceIncludingVAT = 1";
    QTest::newRow("prices without invoice discount") << "N_ItemPrice WHERE AllowInvoiceDisc = 0";
    QTest::newRow("prices of boxes") << "N_ItemPrice JOIN N_Item ON N_Item.Id = Item_Id WHERE N_ItemPrice.Measure_Id <> N_Item.Measure_Id";
    QTest::newRow("special prices") << "N_ItemDiscount WHERE SpecialPrice > 0 AND DiscountPercent = 0";
    QTest::newRow("special prices with a percent") << "N_ItemDiscount WHERE SpecialPrice > 0 AND DiscountPercent > 0";
    QTest::newRow("contractor's discounts") << "N_ItemDiscount WHERE Contragent_Id IS NOT NULL";
    QTest::newRow("discounts of a sub-type") << "N_ItemDiscount WHERE SubDocument_Id IS NOT NULL";
    QTest::newRow("discounts of purchases") << "N_ItemDiscount WHERE Side = 0";
    const QString debtors = QStringLiteral("(SELECT 1 FROM G_ContragentEntry JOIN N_Contragent ON N_Contragent.Id = Contragent_Id "
                                           "WHERE Opened = 1 AND N_Contragent.Comp_Id = '1' GROUP BY N_Contragent.Id HAVING %1) AS Debtor");
    QTest::newRow("above the credit limit") << debtors.arg(QStringLiteral("SUM(Remaining_LCY) > MAX(CreditLimit)"));
    QTest::newRow("within it") << debtors.arg(QStringLiteral("SUM(Remaining_LCY) < MAX(CreditLimit)"));
    QTest::newRow("overdue") << debtors.arg(QStringLiteral("MIN(DueDate) < '20260630'"));
    QTest::newRow("not overdue") << debtors.arg(QStringLiteral("MIN(DueDate) > '20300101'"));
    QTest::newRow("paid in part") << "G_ContragentEntry WHERE Opened = 1 AND Remaining < Amount";
  }

  void somethingOfEverything()
  {
    QFETCH(QString, what);
    QVERIFY(database_->value(QStringLiteral("SELECT COUNT(*) FROM ") + what).toInt() > 0);
  }

  void identificationCodesAreValid()
  {
    const RecordSet rows =
        database_->query(QStringLiteral("SELECT Bulstat FROM N_Contragent WHERE Bulstat IS NOT NULL"));
    QVERIFY(rows.rows > 40);
    for (qsizetype i = 0; i < rows.rows; ++i) {
      QVERIFY2(hasCheckDigit(rows.value(i, 0).toString()), qPrintable(rows.value(i, 0).toString()));
    }
  }

  // Lines and headers again, in whole numbers and from what a person reads: quantity, price, discount, percent.
  void totalsAreExact()
  {
    constexpr qint64 cent = amountScale / 100;
    auto lines = database_->prepare(QStringLiteral(
        "SELECT Quantity, UnitPrice, LineDiscount, VATPercent, TotalPrice, TotalValue, VATValue, TotalVAT, Master_Id "
        "FROM D_SaleInvoiceLine"));
    QHash<QString, QHash<qint64, qint64>> groups;
    int discounted = 0;
    while (lines->step()) {
      const auto rest = (100 * amountScale - lines->integer(2));
      const auto exact = static_cast<Wide>(lines->integer(0)) * lines->integer(1) * rest;
      const qint64 expected = centsOf(exact, 18) * cent;
      discounted += lines->integer(2) > 0;
      QCOMPARE(lines->integer(4), expected);
      QCOMPARE(lines->integer(5), expected);
      QCOMPARE(lines->integer(6), centsOf(static_cast<Wide>(expected) * lines->integer(3), 12) * cent);
      QCOMPARE(lines->integer(7), lines->integer(5) + lines->integer(6));
      groups[lines->text(8)][lines->integer(3)] += expected;
    }
    QVERIFY(discounted > 100);
    auto headers =
        database_->prepare(QStringLiteral("SELECT Id, TotalValue, VATValue, TotalVAT FROM D_SaleInvoiceHeader"));
    while (headers->step()) {
      qint64 value = 0;
      qint64 vat = 0;
      const auto of = groups.value(headers->text(0));
      for (auto it = of.cbegin(); it != of.cend(); ++it) {
        value += it.value();
        vat += centsOf(static_cast<Wide>(it.value()) * it.key(), 12) * cent;
      }
      QCOMPARE(headers->integer(1), value);
      QCOMPARE(headers->integer(2), vat);
      QCOMPARE(headers->integer(3), value + vat);
    }
  }

  void numberingGoesOnWhereItStopped()
  {
    const RecordSet series = database_->query(QStringLiteral(
        "SELECT N_Series.LastNo, MAX(D_SaleInvoiceHeader.DocumentNo) AS \"Last:TEXT\", COUNT(*) AS \"Count:INTEGER\" "
        "FROM N_Series "
        "JOIN D_SaleInvoiceHeader ON D_SaleInvoiceHeader.Series_Id = N_Series.Id GROUP BY N_Series.Id"));
    QCOMPARE(series.rows, 4);
    for (qsizetype i = 0; i < series.rows; ++i) {
      QCOMPARE(series.value(i, 1).toString().mid(1).toLongLong(), series.value(i, 0).toLongLong());
      QCOMPARE(series.value(i, 2).toLongLong(), series.value(i, 0).toLongLong());
    }
  }

  void theEuroComesOnItsDay()
  {
    const QString of = QStringLiteral("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE %1");
    QCOMPARE(database_->value(of.arg(QStringLiteral("Currency_Id = 'BGN' AND DocumentDate >= '20260101'"))).toInt(), 0);
    QCOMPARE(database_->value(of.arg(QStringLiteral("Currency_Id IS NULL AND DocumentDate < '20260101'"))).toInt(), 0);
    QVERIFY(database_->value(of.arg(QStringLiteral("Currency_Id = 'BGN'"))).toInt() > 100);
  }

  void theFirstPageComesStraightFromAnIndex_data()
  {
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("condition");
    QTest::newRow("default order") << "DocumentDate DESC, DocumentNo DESC, Id DESC" << "";
    QTest::newRow("by number") << "DocumentNo, Id" << "";
    QTest::newRow("of a customer") << "DocumentDate DESC, DocumentNo DESC, Id DESC" << " AND Contragent_Id = 'x'";
    QTest::newRow("of an object") << "DocumentDate DESC, DocumentNo DESC, Id DESC" << " AND C_Businessgroup_Id = '1'";
  }

  void theFirstPageComesStraightFromAnIndex()
  {
    QFETCH(QString, order);
    QFETCH(QString, condition);
    const QString list =
        database_->value(QStringLiteral("SELECT SqlText FROM S_QueryList WHERE Id = 12000")).toString();
    QString terms;
    for (const QString& term : order.split(QStringLiteral(", "))) {
      terms += (terms.isEmpty() ? QString() : QStringLiteral(", ")) + QStringLiteral("D_SaleInvoiceHeader.") + term;
    }
    const QString plan = kalvor::testing::planOf(
        *database_,
        QStringLiteral("%1 WHERE D_SaleInvoiceHeader.Comp_Id = '1'%2 ORDER BY %3 LIMIT 32")
            .arg(list, QString(condition).replace(QStringLiteral(" AND "), QStringLiteral(" AND D_SaleInvoiceHeader.")), terms));
    const bool sorted = plan.contains(u"TEMP B-TREE") || plan.contains(u"Sort");
    QVERIFY2(!sorted && plan.contains(QLatin1StringView("IX_D_SaleInvoiceHeader"), Qt::CaseInsensitive), qPrintable(plan));
  }

  void refusedHalfwayLeavesNothing()
  {
    auto connection = kalvor::testing::newTestConnection();
    migrate(*connection);
    connection->execute(QStringLiteral("INSERT INTO N_Company (Id, Name) VALUES ('2', 'Заето')"));
    QVERIFY_EXCEPTION_THROWN(createDemoCompany(*connection, kalvor::testing::smallDemo()), StoreError);
    QCOMPARE(connection->value(QStringLiteral("SELECT COUNT(*) FROM N_Company")).toInt(), 1);
    QCOMPARE(connection->value(QStringLiteral("SELECT COUNT(*) FROM S_Forms")).toInt(), 0);
  }

 private:
  std::unique_ptr<Connection> database_;
};

static kalvor::testing::RegisterTest<DemoCompanyTest> demoCompanyTest;
#include "demo_company_test.moc"
