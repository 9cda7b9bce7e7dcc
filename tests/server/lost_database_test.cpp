// PostgreSQL goes away under a server and comes back: an error that gives nothing away, then work as before.
#include "several_tests.h"
#include "server/store/database.h"
#include "server/test_company.h"
#include "server/test_database.h"

namespace kalvor::testing {

using namespace server;

class LostDatabaseTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    if (!onPostgres()) {
      return;
    }
    company_ = std::make_unique<TestCompany>();
    company_->addDocument(QStringLiteral("D1"), 1);
    operator_ = openDatabase(company_->databases().company, ConnectionUse::Write);
  }

  void init()
  {
    if (!onPostgres()) {
      QSKIP("a database in a file is not lost");
    }
  }

  // Reading and the beginning of a save do no harm twice: the call connects again and nobody notices.
  void anIdleConnectionIsRenewed()
  {
    TestCaller caller(*company_, QStringLiteral("AB"));
    const QString provider = caller.request(9001);
    const DataPacketPtr packet = caller.open(provider);
    cutConnections();
    QCOMPARE(caller.column(provider, QStringLiteral("Id")), QStringLiteral("D1"));
    cutConnections();
    QCOMPARE(caller.save({{provider, DeltaBuilder(packet).modify(0, {{"Name", "Друго"}}).delta()}}).toInt(), 0);
    QCOMPARE(caller.column(provider, QStringLiteral("Name")), QStringLiteral("Друго"));
  }

  void aTransactionIsLostAsAWhole()
  {
    TestCaller caller(*company_, QStringLiteral("AB"));
    const QString provider = caller.request(9001);
    const DataPacketPtr packet = caller.open(provider);
    const QString before = caller.column(provider, QStringLiteral("Name"));
    caller.call("trStart");
    QCOMPARE(caller.save({{provider, DeltaBuilder(packet).modify(0, {{"Name", "Изгубено"}}).delta()}}).toInt(), 0);
    cutConnections();
    QString text;
    QCOMPARE(errorCode([&] { caller.call("trCommit"); }, &text), int(RpcError::Internal));
    QCOMPARE(text, QStringLiteral("Сървърът няма връзка с базата данни. Опитайте отново след малко."));
    company_->writer().rollback();
    QCOMPARE(caller.column(provider, QStringLiteral("Name")), before);
    QCOMPARE(caller.save({{provider, DeltaBuilder(packet).modify(0, {{"Name", "Ново"}}).delta()}}).toInt(), 0);
  }

  // The connection breaks while a save is committed, once or each time: run again under its request id, else unsettled.
  void aCommitIsLost_data()
  {
    QTest::addColumn<int>("losses");
    QTest::addColumn<QString>("requestId");
    QTest::addColumn<int>("code");
    QTest::newRow("once, repeatable") << 1 << QStringLiteral("lost-1") << 0;
    QTest::newRow("again and again") << 9 << QStringLiteral("lost-2") << int(RpcError::Unsettled);
    QTest::newRow("not repeatable") << 1 << QString() << int(RpcError::Unsettled);
  }
  void aCommitIsLost()
  {
    QFETCH(int, losses);
    QFETCH(QString, requestId);
    QFETCH(int, code);
    TestCaller caller(*company_, QStringLiteral("AB"));
    const QString provider = caller.request(9001);
    const DataPacketPtr packet = caller.open(provider);
    const QString name = QStringLiteral("Име %1 %2").arg(losses).arg(code);
    operator_->execute(QStringLiteral("CREATE SEQUENCE lost_commits"));
    operator_->execute(QStringLiteral(
        "CREATE FUNCTION lose_commit() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF nextval('lost_commits') <= %1 THEN "
        "PERFORM pg_terminate_backend(pg_backend_pid()); PERFORM pg_sleep(5); END IF; RETURN NULL; END $$").arg(losses));
    operator_->execute(QStringLiteral("CREATE CONSTRAINT TRIGGER lost_commit AFTER UPDATE ON T_Doc DEFERRABLE INITIALLY "
                                      "DEFERRED FOR EACH ROW EXECUTE FUNCTION lose_commit()"));
    const int refused = errorCode([&] {
      caller.save({{provider, DeltaBuilder(packet).modify(0, {{"Name", name}}).delta()}}, Variant(), requestId);
    });
    operator_->execute(QStringLiteral("DROP FUNCTION lose_commit() CASCADE"));
    operator_->execute(QStringLiteral("DROP SEQUENCE lost_commits"));
    QCOMPARE(refused, code);
    QCOMPARE(caller.column(provider, QStringLiteral("Name")) == name, code == 0);
  }

  // An error inside a client's transaction ends the call, not the transaction.
  void aFailedStepLeavesTheTransaction()
  {
    Connection& writer = company_->writer();
    {
      Transaction transaction(writer);
      writer.execute(QStringLiteral("UPDATE T_Doc SET Name = 'Цяло' WHERE Id = 'D1'"));
      {
        const Transaction step(writer);
        QVERIFY_THROWS_EXCEPTION(StoreError, writer.execute(QStringLiteral("UPDATE T_Doc SET Name = NULL WHERE Id = 'D1'")));
      }
      transaction.commit();
    }
    QCOMPARE(writer.value(QStringLiteral("SELECT Name FROM T_Doc WHERE Id = 'D1'")).toString(), QStringLiteral("Цяло"));
    // One that somebody passes over must not look committed.
    Transaction transaction(writer);
    QVERIFY_THROWS_EXCEPTION(StoreError, writer.execute(QStringLiteral("UPDATE T_Doc SET Name = NULL WHERE Id = 'D1'")));
    QVERIFY_THROWS_EXCEPTION(StoreError, transaction.commit());
  }

  // The first page of a list comes from an index in both directions, and so does what begins with a text.
  void listsGoByAnIndex_data()
  {
    QTest::addColumn<QString>("sql");
    QTest::newRow("forward") << "SELECT Id FROM T_Doc WHERE Comp_Id = '5' ORDER BY DocDate, Id LIMIT 32";
    QTest::newRow("backward") << "SELECT Id FROM T_Doc WHERE Comp_Id = '5' ORDER BY DocDate DESC, Id DESC LIMIT 32";
    QTest::newRow("beginning") << "SELECT Id FROM T_Doc WHERE Comp_Id = '5' AND DocumentNo >= 'а' AND DocumentNo < 'б' "
                                  "AND DocumentNo LIKE 'а%'";
  }
  void listsGoByAnIndex()
  {
    QFETCH(QString, sql);
    const QString plan = planOf(*operator_, sql);
    QVERIFY2(!plan.contains(u"Sort"), qPrintable(plan));
    QVERIFY2(plan.contains(u"ix_t_doc_date") || plan.contains(u"documentno <"), qPrintable(plan));
  }

  void cleanupTestCase()
  {
    operator_.reset();
    company_.reset();
  }

 private:
  void cutConnections()
  {
    operator_->query(QStringLiteral("SELECT pg_terminate_backend(pid, 5000) FROM pg_stat_activity "
                                    "WHERE datname = current_database() AND pid <> pg_backend_pid()"));
  }

  std::unique_ptr<TestCompany> company_;
  std::unique_ptr<Connection> operator_;
};

static RegisterTest<LostDatabaseTest> lostDatabaseTest;

}  // namespace kalvor::testing

#include "lost_database_test.moc"
