// What the database itself refuses when a statement that a client caused is not what it should be: these go around every
// parser, straight to the store.
#include "several_tests.h"
#include "server/server_core.h"
#include "server/store/asked_rules.h"
#include "test_database.h"

using namespace kalvor;
using namespace kalvor::server;

namespace kalvor::testing {

namespace {

// The kind of the store's refusal, "" when there was none.
QString refusalOf(const std::function<void()>& body)
{
  try {
    body();
  } catch (const StoreError& error) {
    return error.kind() == StoreError::Kind::Denied ? QStringLiteral("denied") : QString::fromUtf8(error.what());
  }
  return {};
}

void ask(Connection& connection, const QString& sql)
{
  auto rows = connection.prepare(sql, StatementUse::Asked);
  while (rows->step()) {
  }
}

}  // namespace

class AskedStatementsTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    core_ = std::make_unique<ServerCore>(ServerCore::Databases::of(newServerDatabase()));
    writer_ = core_->openWriter();
    reader_ = core_->openReader();
  }

  void refused_data()
  {
    QTest::addColumn<QString>("sql");
    const auto row = [](const char* sql) { QTest::newRow(sql) << QString::fromUtf8(sql); };
    row("DELETE FROM N_Company");
    row("UPDATE N_Company SET Name = 'x'");
    row("INSERT INTO N_Company (Id, Name) VALUES ('9', 'x')");
    row("DROP TABLE N_Company");
    row("CREATE TABLE Other (Id INTEGER)");
    row("ALTER TABLE N_Company ADD COLUMN X INTEGER");
    row("SELECT PasswordHash FROM N_Users");
    row("SELECT Id FROM N_Users ORDER BY \"PasswordHash\"");
    row("SELECT Name FROM srv_Migration");
    row("SELECT COUNT(*) FROM srv_Request");
    row("SELECT Id FROM N_Company WHERE EXISTS (SELECT 1 FROM srv_Request)");
    if (!onPostgres()) {
      row("PRAGMA table_info('N_Users')");
      row("PRAGMA query_only = OFF");
      row("PRAGMA writable_schema = ON");
      row("ATTACH DATABASE ':memory:' AS other");
      row("DETACH DATABASE main");
      row("VACUUM");
      row("BEGIN");
      row("SELECT load_extension('x')");
      row("SELECT Id FROM N_Company WHERE load_extension('x') IS NULL");
      row("SELECT sqlite_version()");
      row("SELECT fts3_tokenizer('simple')");
      row("SELECT name FROM sqlite_schema");
      row("SELECT name FROM sqlite_temp_master");
      row("SELECT name FROM pragma_table_info('N_Users')");
      row("SELECT value FROM json_each('[1]')");
      row("SELECT COUNT(*) FROM json_each('[1]')");
      row("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n");
      row("CREATE TEMP TABLE Other (Id INTEGER)");
      row("EXPLAIN SELECT Name FROM srv_Migration");
    } else {
      // These the store refuses before the database reads them, since its engine would take them from an owner.
      row("SELECT pg_sleep(10)");
      row("SELECT pg_read_file('PG_VERSION')");
      row("SELECT \"pg_read_file\" ('PG_VERSION')");
      row("SELECT set_config('default_transaction_read_only', 'off', false)");
      row("SELECT pg_advisory_lock(1)");
      row("SELECT lo_import('x')");
      row("SELECT rolname FROM pg_authid");
      row("SELECT table_name FROM information_schema.tables");
      row("SELECT $$x$$");
      row("SELECT E'\\\\x'");
      row("SELECT U&\"\\0070g_sleep\"(1)");
      row("COPY N_Company TO PROGRAM 'true'");
      row("WITH gone AS (DELETE FROM N_Company RETURNING Id) SELECT Id FROM gone");
      row("SELECT query_to_xml('SELECT 1', true, true, '')");
      // These are PostgreSQL's own refusals.
      row("SELECT Id INTO Other FROM N_Company");
      row("SELECT Id FROM N_Company FOR UPDATE");
    }
  }
  // On a connection that reads, on the writer, and on the writer inside somebody's transaction, which goes on.
  void refused()
  {
    QFETCH(QString, sql);
    QCOMPARE(refusalOf([&] { ask(*reader_, sql); }), QStringLiteral("denied"));
    QCOMPARE(refusalOf([&] { ask(*writer_, sql); }), QStringLiteral("denied"));
    Transaction transaction(*writer_);
    writer_->execute(QStringLiteral("INSERT INTO N_Company (Id, Name) VALUES ('1', 'преди')"));
    QCOMPARE(refusalOf([&] {
               Transaction step(*writer_, false);
               ask(*writer_, sql);
             }), QStringLiteral("denied"));
    QCOMPARE(writer_->value(QStringLiteral("SELECT Name FROM N_Company WHERE Id = '1'")).toString(), QStringLiteral("преди"));
    writer_->execute(QStringLiteral("UPDATE N_Company SET Name = 'след' WHERE Id = '1'"));
  }

  // Not even the server's own statements write through a connection that reads.
  void readersDoNotWrite()
  {
    for (const char* sql : {"DELETE FROM N_Company", "UPDATE N_Company SET Name = 'x'", "CREATE TABLE Other (Id INTEGER)"}) {
      QCOMPARE(refusalOf([&] { reader_->execute(QLatin1StringView(sql)); }), QStringLiteral("denied"));
    }
  }

  void severalStatementsAreNone()
  {
    for (Connection* connection : {reader_.get(), writer_.get()}) {
      QVERIFY(!refusalOf([&] { ask(*connection, QStringLiteral("SELECT Id FROM N_Company; DELETE FROM N_Company")); }).isEmpty());
    }
  }

  // A statement that is kept ready for the server's own use is not taken for a client's.
  void useIsPartOfTheCache()
  {
    const QString sql = QStringLiteral("SELECT COUNT(*) FROM srv_Request");
    writer_->query(sql);
    QCOMPARE(refusalOf([&] { ask(*writer_, sql); }), QStringLiteral("denied"));
    writer_->query(sql);
  }

  void queriesAreNot_data()
  {
    QTest::addColumn<QString>("sql");
    for (const char* sql : {"SELECT Id, Name FROM N_Company WHERE Name LIKE 'а%' ESCAPE '!' ORDER BY Name DESC LIMIT 5",
                            "SELECT COUNT(*) AS \"Count\" FROM N_Company WHERE COALESCE(Name, '') <> ';-- pg_sleep(1)'",
                            "SELECT Id FROM N_Company WHERE Id IN (SELECT Id FROM C_CompanySetup) AND NOT (Id = 'x')",
                            "SELECT srv_rows.\"Id\" AS srv_order0 FROM (SELECT Id FROM N_Company GROUP BY Id) AS srv_rows",
                            "SELECT CASE WHEN (Id = '1') THEN CAST(Id AS TEXT) ELSE '' END AS \"x:TEXT\" FROM N_Company"}) {
      QTest::newRow(sql) << QString::fromUtf8(sql);
    }
  }
  void queriesAreNot()
  {
    QFETCH(QString, sql);
    QCOMPARE(refusalOf([&] { ask(*reader_, sql); }), QString());
    QCOMPARE(refusalOf([&] { ask(*writer_, sql); }), QString());
    Transaction transaction(*writer_);
    QCOMPARE(refusalOf([&] { ask(*writer_, sql); }), QString());
    writer_->execute(QStringLiteral("INSERT INTO N_Company (Id, Name) VALUES ('2', 'x')"));
  }

  // The schema changes under a statement: it is compiled anew under its own rules, and a new table is known.
  void newTables()
  {
    auto kept = writer_->prepare(QStringLiteral("SELECT COUNT(*) FROM N_Company"), StatementUse::Asked);
    kept->step();
    kept->reset();
    writer_->define(QStringLiteral("CREATE TABLE T_New (Id INTEGER)"));
    QVERIFY(kept->step());
    QCOMPARE(refusalOf([&] { ask(*writer_, QStringLiteral("SELECT Id FROM T_New")); }), QString());
    QCOMPARE(refusalOf([&] { ask(*reader_, QStringLiteral("SELECT Id FROM T_New")); }), QString());
  }

  // Where the owner of the database made the role of readers, PostgreSQL refuses what the store would not even look at.
  void roleOfReaders()
  {
    if (!onPostgres()) {
      QSKIP("SQLite has no roles");
    }
    const QString uri = newPostgresDatabase();
    const auto owner = openDatabase(uri, ConnectionUse::Write);
    const QString role = owner->value(QStringLiteral("SELECT current_database() || '_reader'")).toString();
    owner->execute(QStringLiteral("CREATE ROLE %1 NOLOGIN").arg(role));
    owner->execute(QStringLiteral("GRANT %1 TO CURRENT_USER").arg(role));
    {
      ServerCore core(ServerCore::Databases::of(uri));
      const auto reader = core.openReader();
      QCOMPARE(refusalOf([&] { ask(*reader, QStringLiteral("SELECT Id, Active FROM N_Users")); }), QString());
      QCOMPARE(refusalOf([&] { ask(*reader, QStringLiteral("SELECT Name FROM N_Company")); }), QString());
      // In the role, past the store's own words.
      owner->begin(true);
      owner->execute(QStringLiteral("SET LOCAL ROLE ") + role);
      for (const char* sql : {"SELECT PasswordHash FROM N_Users", "SELECT Token FROM srv_Session", "DELETE FROM N_Company",
                              "SELECT pg_read_file('PG_VERSION')", "CREATE TABLE Other (Id INTEGER)"}) {
        QCOMPARE(refusalOf([&] {
                   Transaction step(*owner, false);
                   owner->query(QLatin1StringView(sql));
                 }), QStringLiteral("denied"));
      }
      owner->rollback();
      // A server that starts again gives the same rights, and the server's own statements keep their own role.
      ServerCore again(ServerCore::Databases::of(uri));
      QVERIFY(!isNull(again.openReader()->value(QStringLiteral("SELECT COUNT(*) FROM srv_Session"))));
    }
    owner->execute(QStringLiteral("DROP OWNED BY ") + role);
    owner->execute(QStringLiteral("DROP ROLE ") + role);
  }

 private:
  std::unique_ptr<ServerCore> core_;
  std::unique_ptr<Connection> writer_, reader_;
};

static RegisterTest<AskedStatementsTest> askedStatementsTest;

}  // namespace kalvor::testing

#include "asked_statements_test.moc"
