#include <QTemporaryDir>

#include "demo_database.h"
#include "server/demo/init_command.h"
#include "server/demo/invoice_generator.h"
#include "server/load/command_line.h"
#include "server/load/load_command.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::server;

class CommandTest : public QObject {
  Q_OBJECT

 private slots:
  void argumentsAreRead()
  {
    const CommandArguments parsed = parseArguments(
        {"T", "--map", "a=B", "c=D", "f.csv", "--db", "x=y.db", "--map", "e=", "--quiet"},
        {{"--map", OptionKind::Pairs}, {"--db", OptionKind::Value}, {"--quiet", OptionKind::Flag}});
    QCOMPARE(parsed.positional, QStringList({"T", "f.csv"}));
    QCOMPARE(parsed.options.value("--map"), QStringList({"a=B", "c=D", "e="}));
    QCOMPARE(parsed.value("--db"), QStringLiteral("x=y.db"));
    QVERIFY(parsed.has("--quiet"));
    QCOMPARE(pairOf("e=a=b"), std::pair(QStringLiteral("e"), QStringLiteral("a=b")));
  }

  void wrongCalls_data()
  {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::newRow("nothing") << QStringList() << 2;
    QTest::newRow("no file") << QStringList{"N_Item"} << 2;
    QTest::newRow("unknown option") << QStringList{"N_Item", "x.csv", "--force"} << 2;
    QTest::newRow("option without value") << QStringList{"N_Item", "x.csv", "--db"} << 2;
    QTest::newRow("map without pair") << QStringList{"N_Item", "x.csv", "--map", "code"} << 2;
    QTest::newRow("lookup of nothing") << QStringList{"N_Item", "x.csv", "--lookup", "Measure_Id=N_Measure"} << 2;
    QTest::newRow("no database") << QStringList{"N_Item", "x.csv", "--db", "/nowhere/at/all.db"} << 1;
  }

  void wrongCalls()
  {
    QFETCH(QStringList, arguments);
    QTEST(runLoad(arguments), "code");
  }

  void initMakesWhatIsMissing()
  {
    QTemporaryDir folder;
    const QString file = kalvor::testing::newDatabaseName(folder.filePath(QStringLiteral("deeper/company.db")));
    const auto hash = [](const QString& digest) { return digest; };
    QCOMPARE(runInit({"--db", file, "--invoices", "x"}, hash), 2);
    QVERIFY(!QFile::exists(file));
    QCOMPARE(runInit({"--db", file, "--invoices", "20", "--lines", "3"}, hash), 0);
    QCOMPARE(runInit({"--db", file, "--invoices", "5"}, hash), 0);
    const auto connection = openDatabase(file, ConnectionUse::Read);
    const auto number = [&](const char* sql) { return connection->value(QString::fromLatin1(sql)).toLongLong(); };
    QCOMPARE(number("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE Comp_Id = '1'"), 5025);
    QCOMPARE(number("SELECT COUNT(*) FROM N_Item WHERE Comp_Id = '1'"), 1000);
    QCOMPARE(number("SELECT COUNT(DISTINCT DocumentNo) FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'G%'"), 25);
    QCOMPARE(
        number(
            "SELECT COUNT(*) FROM D_SaleInvoiceLine JOIN D_SaleInvoiceHeader ON D_SaleInvoiceHeader.Id = Master_Id "
            "WHERE DocumentNo LIKE 'G%'"),
        60);
    QCOMPARE(
        number("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'G%' AND DocumentNo <= 'G000000020' "
               "AND TotalValue <> (SELECT SUM(TotalValue) FROM D_SaleInvoiceLine WHERE Master_Id = "
               "D_SaleInvoiceHeader.Id)"),
        0);
  }

  void manyInvoicesKeepTheirIndexes()
  {
    const auto connection = kalvor::testing::demoDatabase();
    const auto indexes = [&] {
      return connection
          ->value(kalvor::testing::onPostgres()
                      ? QStringLiteral("SELECT COUNT(*) FROM pg_indexes WHERE indexname LIKE 'ix%'")
                      : QStringLiteral("SELECT COUNT(*) FROM sqlite_schema WHERE type = 'index' AND name LIKE 'IX%'"))
          .toInt();
    };
    const int before = indexes();
    GeneratorOptions options;
    options.invoices = 50'000;
    generateInvoices(*connection, options);
    QCOMPARE(indexes(), before);
    QCOMPARE(
        connection->value(QStringLiteral("SELECT COUNT(*) FROM D_SaleInvoiceHeader WHERE Comp_Id = '1'")).toInt(),
        50'400);
  }
};

static kalvor::testing::RegisterTest<CommandTest> commandTest;
#include "command_test.moc"
