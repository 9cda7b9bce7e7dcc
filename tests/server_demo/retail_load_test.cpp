// A real retailer's journal, as four tables, through the load command. The sample stays outside the project.
#include <QProcess>
#include <QTemporaryDir>

#include "demo_database.h"
#include "server/load/load_command.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

class RetailLoadTest : public QObject {
  Q_OBJECT

 private slots:
  void fourTablesLoadWithoutAMap()
  {
    const QString samples =
        qEnvironmentVariable("KALVOR_SAMPLES", QStringLiteral(KALVOR_SOURCE_DIR "/../shared/samples"));
    const QString script = samples + QStringLiteral("/retail.py");
    if (!QFile::exists(script)) {
      QSKIP("the retail sample is not beside the source folder");
    }
    QTemporaryDir folder;
    QCOMPARE(QProcess::execute(QStringLiteral("python3"), {script, QStringLiteral("--tables"), folder.path()}), 0);
    const QString database = kalvor::testing::newDatabaseName(folder.filePath(QStringLiteral("company.db")));
    {
      const auto connection = openDatabase(database, ConnectionUse::Write);
      migrate(*connection);
      createDemoCompany(*connection, kalvor::testing::smallDemo());
    }
    constexpr std::pair<const char*, const char*> tables[] = {{"N_Contragent", "customers.csv"},
                                                              {"N_Item", "items.csv"},
                                                              {"D_SaleInvoiceHeader", "invoices.csv"},
                                                              {"D_SaleInvoiceLine", "lines.csv"}};
    for (const auto& [table, file] : tables) {
      QStringList arguments{QString::fromLatin1(table), folder.filePath(QString::fromLatin1(file)), "--db", database};
      if (qstrcmp(table, "D_SaleInvoiceHeader") == 0) {
        arguments << "--set" << "Currency_Id=GBP";
      }
      QCOMPARE(runLoad(arguments), 0);
    }
    const auto connection = openDatabase(database, ConnectionUse::Read);
    const auto number = [&](const char* sql) { return connection->value(QString::fromLatin1(sql)).toLongLong(); };
    QCOMPARE(
        number("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE '536%' OR DocumentNo LIKE 'C536%'"),
        66);
    QVERIFY(number("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'C%'") > 0);
    QCOMPARE(number("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'C%' AND TotalValue >= 0"), 0);
    QCOMPARE(number("SELECT TotalValue + 0 FROM D_SaleInvoiceHeader WHERE DocumentNo = '536365'"), 139'120'000);
    QCOMPARE(number("SELECT VATValue + 0 FROM D_SaleInvoiceHeader WHERE DocumentNo = '536365'"), 27'820'000);
    QCOMPARE(
        number(
            "SELECT COUNT(*) FROM D_SaleInvoiceLine JOIN D_SaleInvoiceHeader ON D_SaleInvoiceHeader.Id = Master_Id "
            "WHERE DocumentNo = '536365'"),
        7);
    QCOMPARE(
        number(
            "SELECT COUNT(*) FROM D_SaleInvoiceLine JOIN D_SaleInvoiceHeader ON D_SaleInvoiceHeader.Id = Master_Id "
            "WHERE D_SaleInvoiceHeader.Currency_Id = 'GBP' AND C_User_Id = 'SUPERVSR' AND DocumentDate < '20110101'"),
        999);
    QCOMPARE(runLoad({"D_SaleInvoiceLine", folder.filePath(QStringLiteral("items.csv")), "--db", database}), 1);
  }
};

static kalvor::testing::RegisterTest<RetailLoadTest> retailLoadTest;
#include "retail_load_test.moc"
