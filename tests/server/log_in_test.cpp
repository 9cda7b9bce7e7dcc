// Log-in: what an attempt costs, how fast passwords may be tried and by whom, how long a session lives and what ends it.
#include "several_tests.h"
#include "server/operations/log_in_throttle.h"
#include "server/store/database.h"
#include "server/test_company.h"
#include "server/test_database.h"

namespace kalvor::testing {

using namespace server;

namespace {

constexpr int notHeard = -100;

// The result of LogIn; notHeard when the password was not even looked at.
int attempt(TestCompany& company, const QString& peer, const QString& user, const QString& password,
            const QString& companyId = QStringLiteral("5"), const QString& group = QStringLiteral("7"))
{
  TestCaller caller(company);
  caller.session.peer = peer;
  VariantArray arguments{user, digestOf(password), group, companyId, QString()};
  const quint64 before = hashesComputed();
  const int result = caller.call("LogIn", arguments).toInt();
  return hashesComputed() == before ? notHeard : result;
}

// So many attempts, "%1" in peer and user counting from 1; all of them end alike.
struct Attempts {
  int times;
  QString peer;
  QString user;
  QString password;
  int result;
  int secondsBefore = 0;  // that pass before the first of them
};
using AttemptList = QList<Attempts>;

const QString right = QStringLiteral("demo");
const QString wrong = QStringLiteral("x");

}  // namespace

class LogInTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { company_ = std::make_unique<TestCompany>(); }
  void cleanup()
  {
    state_.reset();
    company_.reset();
  }

  void everyAttemptCostsOneHash_data()
  {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("password");
    QTest::addColumn<int>("result");
    QTest::newRow("right") << "AB" << "5" << "7" << right << 0;
    QTest::newRow("wrong password") << "AB" << "5" << "7" << wrong << -1;
    QTest::newRow("no such user") << "NOBODY" << "5" << "7" << right << -4;
    QTest::newRow("no user at all") << "" << "5" << "7" << right << -4;
    QTest::newRow("no such company") << "AB" << "99" << "7" << right << -4;
    QTest::newRow("not his group") << "AB" << "5" << "8" << right << -4;
    QTest::newRow("inactive") << "GH" << "5" << "7" << right << -5;
    QTest::newRow("inactive, wrong password") << "GH" << "5" << "7" << wrong << -1;
    QTest::newRow("without a stored hash") << "EF" << "5" << "7" << right << -1;
  }
  void everyAttemptCostsOneHash()
  {
    QFETCH(QString, user);
    QFETCH(QString, company);
    QFETCH(QString, group);
    QFETCH(QString, password);
    company_->writer().execute(QStringLiteral("UPDATE N_Users SET PasswordHash = NULL WHERE Id = 'EF'"));
    const quint64 before = hashesComputed();
    QTEST(attempt(*company_, QStringLiteral("10.0.0.1"), user, password, company, group), "result");
    QCOMPARE(hashesComputed() - before, quint64(1));
  }

  // The parameters that an unknown user is hashed with are those of a new password.
  void nobodyCostsWhatAUserCosts()
  {
    const auto milliseconds = [](const QString& hash) {
      QElapsedTimer timer;
      timer.start();
      digestMatches(hash, digestOf(right));
      return double(timer.nsecsElapsed()) / 1e6;
    };
    setPasswordCost(PasswordCost::Interactive);
    const QString somebody = hashDigest(digestOf(wrong));
    const double known = milliseconds(somebody);
    const double unknown = milliseconds(QString());
    setPasswordCost(PasswordCost::CheapForTests);
    QVERIFY(somebody.startsWith(QStringLiteral("$argon2id$v=19$m=65536,t=2,p=1$")));
    // A cheap or a refused hash takes a hundredth.
    QVERIFY2(unknown > known / 10 && unknown < known * 10, qPrintable(QStringLiteral("%1 ms, %2 ms").arg(known).arg(unknown)));
  }

  void throttling_data()
  {
    QTest::addColumn<QVariant>("attempts");
    const auto row = [](const char* name, const AttemptList& list) { QTest::newRow(name) << QVariant::fromValue(list); };
    const QString peer = QStringLiteral("10.0.0.1");
    const QString elsewhere = QStringLiteral("10.9.0.1");
    const QString ab = QStringLiteral("AB");
    row("the sixth after five failures waits a second",
        {{5, peer, ab, wrong, -1}, {1, peer, ab, right, notHeard}, {1, peer, ab, right, 0, 2}});
    row("the wait doubles up to a minute", {{5, peer, ab, wrong, -1}, {1, peer, ab, wrong, -1, 2}, {1, peer, ab, right, notHeard, 1},
                                            {1, peer, ab, wrong, -1, 3}, {1, peer, ab, wrong, -1, 9}, {1, peer, ab, wrong, -1, 17},
                                            {1, peer, ab, wrong, -1, 33}, {1, peer, ab, wrong, -1, 61}, {1, peer, ab, wrong, -1, 61},
                                            {1, peer, ab, right, notHeard, 55}, {1, peer, ab, right, 0, 6}});
    row("in whatever letters", {{5, peer, ab, wrong, -1}, {1, peer, QStringLiteral("ab"), right, notHeard}});
    row("success forgets", {{4, peer, ab, wrong, -1}, {1, peer, ab, right, 0}, {5, peer, ab, wrong, -1}});
    row("a quarter of an hour forgets", {{5, peer, ab, wrong, -1}, {5, peer, ab, wrong, -1, 901}});
    row("another user, another address: not disturbed",
        {{5, peer, ab, wrong, -1}, {1, peer, QStringLiteral("CD"), right, 0}, {1, elsewhere, ab, right, 0}});
    row("a code that is longer than what is kept", {{5, peer, QString(300, u'Я'), wrong, -4}, {1, peer, QString(300, u'Я'), right, notHeard}});
    row("a network that tries many users",
        {{1, QStringLiteral("10.0.0.77"), ab, right, 0},
         {30, QStringLiteral("10.0.0.%1"), QStringLiteral("U%1"), wrong, -4},
         {1, QStringLiteral("10.0.0.200"), QStringLiteral("CD"), right, notHeard},
         {1, QStringLiteral("10.0.1.200"), QStringLiteral("CD"), right, 0},
         {1, QStringLiteral("10.0.0.77"), ab, right, 0},          // he has been in from there
         {1, QStringLiteral("10.0.0.77"), QStringLiteral("CD"), right, notHeard},
         {1, QStringLiteral("10.0.0.200"), QStringLiteral("CD"), right, 0, 61}});
    row("its failures fade", {{29, QStringLiteral("10.0.0.%1"), QStringLiteral("U%1"), wrong, -4},
                              {29, QStringLiteral("10.0.0.%1"), QStringLiteral("V%1"), wrong, -4, 870}});
    row("a network of IPv6",
        {{30, QStringLiteral("2001:db8::%1"), QStringLiteral("U%1"), wrong, -4},
         {1, QStringLiteral("2001:db8::ffff:1"), ab, right, notHeard}, {1, QStringLiteral("2001:db8:0:1::1"), ab, right, 0}});
    row("a user tried from many networks",
        {{1, QStringLiteral("10.77.0.1"), ab, right, 0},
         {20, QStringLiteral("10.%1.0.1"), ab, wrong, -1},
         {1, QStringLiteral("10.3.0.2"), ab, wrong, notHeard},    // a network that has failed
         {1, QStringLiteral("10.3.0.2"), QStringLiteral("CD"), right, 0},
         {1, QStringLiteral("10.200.0.1"), ab, wrong, -1},         // a clean one has one try
         {1, QStringLiteral("10.200.0.2"), ab, right, notHeard},
         {1, QStringLiteral("10.201.0.1"), ab, right, 0},
         {1, QStringLiteral("10.77.0.1"), ab, right, 0},
         {1, QStringLiteral("10.3.0.2"), ab, right, 0, 61}});
  }
  void throttling()
  {
    QFETCH(QVariant, attempts);
    int line = 0;
    for (const Attempts& step : attempts.value<AttemptList>()) {
      ++line;
      pass(step.secondsBefore);
      for (int i = 1; i <= step.times; ++i) {
        const auto numbered = [i](const QString& text) { return text.contains(u'%') ? text.arg(i) : text; };
        const int result = attempt(*company_, numbered(step.peer), numbered(step.user), step.password);
        QVERIFY2(result == step.result, qPrintable(QStringLiteral("step %1, attempt %2: %3").arg(line).arg(i).arg(result)));
      }
    }
  }

  void networks_data()
  {
    QTest::addColumn<QString>("peer");
    QTest::addColumn<QString>("network");
    QTest::newRow("IPv4") << "192.168.1.77" << "192.168.1.0/24";
    QTest::newRow("IPv4 seen through IPv6") << "::ffff:192.168.1.77" << "192.168.1.0/24";
    QTest::newRow("IPv6") << "2001:db8:1:2:3:4:5:6" << "2001:db8:1:2::/64";
    QTest::newRow("of a link") << "fe80::1%eth0" << "fe80::/64";
    QTest::newRow("none") << "test" << "test";
  }
  void networks()
  {
    QFETCH(QString, peer);
    QTEST(networkOf(peer), "network");
  }

  void sessionsEnd_data()
  {
    QTest::addColumn<QString>("column");
    QTest::addColumn<int>("secondsAgo");
    QTest::addColumn<bool>("alive");
    const SessionLimits limits;
    QTest::newRow("silent for almost as long as allowed") << "UsedAt" << int(limits.idleSeconds) - 60 << true;
    QTest::newRow("silent for longer") << "UsedAt" << int(limits.idleSeconds) + 60 << false;
    QTest::newRow("almost as old as allowed") << "CreatedAt" << int(limits.absoluteSeconds) - 60 << true;
    QTest::newRow("older, though in use") << "CreatedAt" << int(limits.absoluteSeconds) + 60 << false;
  }
  void sessionsEnd()
  {
    QFETCH(QString, column);
    QFETCH(int, secondsAgo);
    QFETCH(bool, alive);
    TestCaller caller(*company_);
    VariantArray logIn{"AB", digestOf(right), "7", "5", QString()};
    QCOMPARE(caller.call("LogIn", logIn).toInt(), 0);
    state().execute(QStringLiteral("UPDATE srv_Session SET %1 = %1 - %2").arg(column).arg(secondsAgo));
    TestCaller later(*company_);
    QCOMPARE(later.call("ResumeSession", {logIn[4]}).toInt(), alive ? 0 : -1);
    QString text;
    QCOMPARE(errorCode([&] { caller.call("servername"); }, &text), alive ? 0 : int(RpcError::NotLoggedIn));
    QVERIFY(alive || text.contains(QStringLiteral("Сесията е прекратена")));
  }

  void sessionTextsAreRandomAndNotKept()
  {
    QSet<QString> texts;
    for (int i = 0; i < 20; ++i) {
      Session session{{}, QStringLiteral("AB"), QStringLiteral("5"), QStringLiteral("7"), QStringLiteral("test")};
      texts.insert(company_->core().state().openSession(session));
    }
    QCOMPARE(texts.size(), 20);
    for (const QString& text : texts) {
      QCOMPARE(QByteArray::fromHex(text.toLatin1()).size(), 32);
      QCOMPARE(state().value(QStringLiteral("SELECT COUNT(*) FROM srv_Session WHERE Token = ?"), {text}).toInt(), 0);
    }
  }

  void aNewPasswordEndsTheOtherSessions()
  {
    TestCaller first(*company_, QStringLiteral("AB"));
    TestCaller second(*company_, QStringLiteral("AB"));
    TestCaller colleague(*company_, QStringLiteral("CD"));
    TestCaller administrator(*company_, QStringLiteral("SUPERVSR"));
    QCOMPARE(first.call("ChangePassword", {QStringLiteral("ab"), digestOf(QStringLiteral("ново"))}).toInt(), 0);
    const auto refused = [](TestCaller& caller) { return errorCode([&] { caller.call("servername"); }); };
    QCOMPARE(refused(first), 0);
    QCOMPARE(refused(second), int(RpcError::NotLoggedIn));
    QCOMPARE(refused(colleague), 0);
    QCOMPARE(attempt(*company_, QStringLiteral("10.0.0.1"), QStringLiteral("AB"), right), -1);
    QCOMPARE(attempt(*company_, QStringLiteral("10.0.0.1"), QStringLiteral("AB"), QStringLiteral("ново")), 0);
    QCOMPARE(administrator.call("ChangePassword", {QStringLiteral("CD"), digestOf(wrong)}).toInt(), 0);
    QCOMPARE(refused(colleague), int(RpcError::NotLoggedIn));
    QCOMPARE(refused(administrator), 0);
    QCOMPARE(refused(first), 0);
  }

 private:
  Connection& state()
  {
    if (!state_) {
      state_ = openDatabase(company_->databases().state, ConnectionUse::State);
    }
    return *state_;
  }
  void pass(int seconds)
  {
    if (seconds > 0) {
      state().execute(QStringLiteral("UPDATE srv_LogInFailure SET LastAt = LastAt - %1").arg(seconds));
    }
  }

  std::unique_ptr<TestCompany> company_;
  std::unique_ptr<Connection> state_;
};

static RegisterTest<LogInTest> logInTest;

}  // namespace kalvor::testing

#include "log_in_test.moc"
