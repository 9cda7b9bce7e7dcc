// Two servers on one database behave as one: what counts is in the database, not in either of them.
#include <thread>

#include "several_tests.h"
#include "server/store/database.h"
#include "server/test_company.h"
#include "server/test_database.h"

namespace kalvor::testing {

using namespace server;

namespace {

constexpr int documentsForm = 9001;

QHash<QString, Variant> newDocument(const QString& id, const QString& name = QStringLiteral("Нов"))
{
  return {{QStringLiteral("Id"), id}, {QStringLiteral("Name"), name}, {QStringLiteral("Kind"), 1},
          {QStringLiteral("Series_Id"), QStringLiteral("S1")}};
}

Variant numberFor(const QString& id)
{
  return VariantArray{VariantArray{QStringLiteral("T_Doc"), id, QStringLiteral("DocumentNo"), QStringLiteral("S1")}};
}

// A new document with a number of the series S1, as a form saves it.
Variant saveNumbered(TestCaller& caller, const QString& provider, const QString& id, const QString& requestId = {},
                     const QString& name = QStringLiteral("Нов"))
{
  const DeltaPtr delta = DeltaBuilder(caller.open(provider, 0)).insert(newDocument(id, name)).delta();
  return caller.save({{provider, delta}}, numberFor(id), requestId);
}

VariantArray checkOut(TestCaller& caller, const QString& document)
{
  VariantArray arguments{document, documentsForm, Variant()};
  const Variant result = caller.call("CheckOutDocument", arguments);
  return {result, arguments[2]};
}

}  // namespace

class TwoServersTest : public QObject {
  Q_OBJECT

 private slots:
  void init()
  {
    first_ = std::make_unique<TestCompany>();
    second_ = std::make_unique<TestCompany>(first_->databases());
  }
  void cleanup()
  {
    second_.reset();
    first_.reset();
  }

  void sessionAndProvidersMoveOver()
  {
    first_->addDocument(QStringLiteral("D1"), 1);
    VariantArray logIn{"AB", digestOf(QStringLiteral("demo")), "7", "5", QString()};
    TestCaller here(*first_);
    QCOMPARE(here.call("LogIn", logIn).toInt(), 0);
    const QString provider = here.request(documentsForm);
    TestCaller there(*second_);
    QCOMPARE(there.call("ResumeSession", {logIn[4]}).toInt(), 0);
    QCOMPARE(there.column(provider, QStringLiteral("Id")), QStringLiteral("D1"));
  }

  void aDocumentHasOneHolder()
  {
    TestCaller here(*first_, QStringLiteral("AB"));
    TestCaller there(*second_, QStringLiteral("CD"));
    const VariantArray taken{1, QStringLiteral("Анна Борисова")};
    const VariantArray free{0, QString()};
    QCOMPARE(checkOut(here, QStringLiteral("D1")), free);
    QCOMPARE(checkOut(there, QStringLiteral("D1")), taken);
    there.call("CheckInDocument", {QStringLiteral("D1")});
    QCOMPARE(checkOut(there, QStringLiteral("D1")), taken);
    here.call("CheckInDocument", {QStringLiteral("D1")});
    QCOMPARE(checkOut(there, QStringLiteral("D1")), free);
    QCOMPARE(checkOut(here, QStringLiteral("D1")), taken);
    // Whoever has been silent for half an hour has lost it.
    const auto state = openDatabase(first_->databases().state, ConnectionUse::State);
    QCOMPARE(state->execute(QStringLiteral("UPDATE srv_Session SET UsedAt = UsedAt - 1900 WHERE User_Id = 'CD'")), 1);
    QCOMPARE(checkOut(here, QStringLiteral("D1")), free);
  }

  void whoeverComesFirstHoldsIt()
  {
    constexpr int documents = 60;
    std::vector<int> results[2];
    onBoth([&](TestCaller& caller, int server) {
      for (int i = 0; i < documents; ++i) {
        results[server].push_back(checkOut(caller, QStringLiteral("X%1").arg(i))[0].toInt());
      }
    });
    QCOMPARE(int(results[0].size()), documents);
    for (size_t i = 0; i < documents; ++i) {
      QCOMPARE(results[0][i] + results[1][i], 1);
    }
  }

  void numbersHaveNoGapAndNoTwin()
  {
    constexpr int saves = 25;
    onBoth([&](TestCaller& caller, int server) {
      const QString provider = caller.request(documentsForm);
      for (int i = 0; i < saves; ++i) {
        saveNumbered(caller, provider, QStringLiteral("N%1-%2").arg(server).arg(i));
        // One that is refused after its number was counted.
        const QString id = QStringLiteral("R%1-%2").arg(server).arg(i);
        const VariantArray numbers = numberFor(id).toList() + VariantArray{VariantArray{"T_Doc", id, "Nothing", "S1"}};
        const DeltaPtr delta = DeltaBuilder(caller.open(provider, 0)).insert(newDocument(id)).delta();
        QVERIFY(errorCode([&] { caller.save({{provider, delta}}, numbers); }) != 0);
      }
    });
    const RecordSet given = first_->reader().query(QStringLiteral("SELECT DocumentNo FROM T_Doc ORDER BY DocumentNo"));
    QCOMPARE(given.rows, 2 * saves);
    for (qsizetype i = 0; i < given.rows; ++i) {
      QCOMPARE(given.value(i, 0).toString(), QStringLiteral("A%1").arg(42 + i, 5, 10, QLatin1Char('0')));
    }
  }

  void aChangeElsewhereIsAConflict()
  {
    first_->addDocument(QStringLiteral("D1"), 1);
    TestCaller here(*first_, QStringLiteral("AB"));
    TestCaller there(*second_, QStringLiteral("CD"));
    const QString mine = here.request(documentsForm);
    const QString theirs = there.request(documentsForm);
    const DataPacketPtr read = here.open(mine);
    const DataPacketPtr alsoRead = there.open(theirs);
    QCOMPARE(here.save({{mine, DeltaBuilder(read).modify(0, {{"Name", "Първи"}}).delta()}}).toInt(), 0);
    QString text;
    QCOMPARE(errorCode([&] { there.save({{theirs, DeltaBuilder(alsoRead).modify(0, {{"Name", "Втори"}}).delta()}}); }, &text),
             int(RpcError::Conflict));
    QVERIFY2(text.contains(u"AB") && text.contains(u"Име"), qPrintable(text));
    QCOMPARE(there.column(theirs, QStringLiteral("Name")), QStringLiteral("Първи"));
  }

  void aRepeatedRequestRunsOnce()
  {
    VariantArray logIn{"AB", digestOf(QStringLiteral("demo")), "7", "5", QString()};
    TestCaller here(*first_);
    QCOMPARE(here.call("LogIn", logIn).toInt(), 0);
    TestCaller there(*second_);
    QCOMPARE(there.call("ResumeSession", {logIn[4]}).toInt(), 0);
    const QString provider = here.request(documentsForm);
    QCOMPARE(saveNumbered(here, provider, QStringLiteral("D1"), QStringLiteral("r-1")).toInt(), 0);
    QCOMPARE(saveNumbered(there, provider, QStringLiteral("D1"), QStringLiteral("r-1")).toInt(), 0);
    QCOMPARE(there.column(provider, QStringLiteral("DocumentNo")), QStringLiteral("A00042"));
    // Both at once, each document under one request id.
    onBoth([&](TestCaller& caller, int) {
      const QString own = caller.request(documentsForm);
      for (int i = 0; i < 20; ++i) {
        QCOMPARE(saveNumbered(caller, own, QStringLiteral("B%1").arg(i), QStringLiteral("b-%1").arg(i)).toInt(), 0);
      }
    }, QStringLiteral("AB"));
    QCOMPARE(first_->reader().value(QStringLiteral("SELECT COUNT(*) FROM T_Doc")).toInt(), 21);
    QCOMPARE(first_->reader().value(QStringLiteral("SELECT LastNo FROM N_Series WHERE Id = 'S1'")).toInt(), 62);
  }

  void settingsAndMetadataReachTheOther()
  {
    TestCaller here(*first_, QStringLiteral("AB"));
    TestCaller there(*second_, QStringLiteral("AB"));
    there.request(documentsForm);
    QCOMPARE(here.call("UpdateUserSettings", {VariantArray{QStringLiteral("<Settings/>")}, QStringLiteral("'AB'")}).toInt(), 0);
    VariantArray read{-1, QStringLiteral("exec dbo.usp_GetUserSettings 'AB', '5'"), QString(), Variant(), Variant(), false};
    QCOMPARE(there.call("RequestValue", read).toInt(), 1);
    QCOMPARE(read[4].toList().value(2).toString(), QStringLiteral("<Settings/>"));

    first_->writer().execute(QStringLiteral("UPDATE S_Forms SET Caption = 'Други' WHERE ID = 9001"));
    MetadataCache::touch(first_->writer());
    VariantArray form{QStringLiteral("9001"), 0, Variant()};
    QCOMPARE(there.call("GetFormsDescription", form).toInt(), 1);
    QVERIFY(variantText(form[2].toList().value(0).toList().value(0)).contains(u"Други"));
  }

  void aPasswordChangeClosesSessionsEverywhere()
  {
    VariantArray logIn{"AB", digestOf(QStringLiteral("demo")), "7", "5", QString()};
    TestCaller there(*second_);
    QCOMPARE(there.call("LogIn", logIn).toInt(), 0);
    TestCaller here(*first_, QStringLiteral("AB"));
    QCOMPARE(here.call("ChangePassword", {"AB", digestOf(QStringLiteral("nova"))}).toInt(), 0);
    QCOMPARE(errorCode([&] { there.newProvider(); }), int(RpcError::NotLoggedIn));
    QCOMPARE(errorCode([&] { here.newProvider(); }), 0);
    TestCaller again(*second_);
    QCOMPARE(again.call("ResumeSession", {logIn[4]}).toInt(), -1);
  }

  void anotherWritersTransactionIsWaitedFor()
  {
    TestCaller here(*first_, QStringLiteral("AB"));
    TestCaller there(*second_, QStringLiteral("CD"));
    here.call("trStart");
    const QString mine = here.request(documentsForm);
    saveNumbered(here, mine, QStringLiteral("T1"));
    std::thread waiting([&] { saveNumbered(there, there.request(documentsForm), QStringLiteral("T2")); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    saveNumbered(here, mine, QStringLiteral("T3"));
    here.call("trRollback");
    waiting.join();
    QCOMPARE(there.column(there.request(documentsForm), QStringLiteral("DocumentNo")), QStringLiteral("A00042"));
  }

 private:
  // A user of each server in a thread of his own, AB on the first and CD on the second unless both are one.
  template <typename Work>
  void onBoth(Work work, const QString& user = {})
  {
    TestCompany* servers[] = {first_.get(), second_.get()};
    const QString users[] = {QStringLiteral("AB"), QStringLiteral("CD")};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&, i] {
        TestCaller caller(*servers[i], user.isEmpty() ? users[i] : user);
        work(caller, i);
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  }

  std::unique_ptr<TestCompany> first_, second_;
};

static RegisterTest<TwoServersTest> twoServersTest;

}  // namespace kalvor::testing

#include "two_servers_test.moc"
