#include "server/service_manager.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QProcess>
#include <QTemporaryDir>
#include <cstddef>
#include <cstring>

#include "rpc/connection.h"
#include "rpc/rpc_error.h"
#include "server/server.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

namespace {

// The service manager's end.
class FakeManager {
 public:
  explicit FakeManager(const QByteArray& name) : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
  {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.constData(), size_t(name.size()));
    if (name.startsWith('@')) {
      address.sun_path[0] = '\0';
    }
    bound = bind(socket_, reinterpret_cast<sockaddr*>(&address),
                 socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()))) == 0;
    const timeval patience{5, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    qputenv("NOTIFY_SOCKET", name);
  }
  ~FakeManager()
  {
    qunsetenv("NOTIFY_SOCKET");
    close(socket_);
  }
  QByteArray receive()
  {
    char buffer[256];
    const ssize_t size = recv(socket_, buffer, sizeof buffer, 0);
    return QByteArray(buffer, qMax<ssize_t>(0, size));
  }
  bool bound = false;

 private:
  int socket_;
};

}  // namespace

// The program as a service manager starts it, with a journal behind its stderr.
class Service {
 public:
  explicit Service(const QTemporaryDir& folder) : log(folder.filePath(QStringLiteral("log")))
  {
    QFile settings(folder.filePath(QStringLiteral("server.conf")));
    settings.open(QIODevice::WriteOnly);
    settings.write("port = 0\nmetrics-port = 0\ndb = " + folder.filePath(QStringLiteral("company.db")).toUtf8() + '\n');
    settings.close();
    log.open(QIODevice::ReadWrite);
    struct stat stream{};
    fstat(log.handle(), &stream);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("KALVOR_DATABASE"));
    environment.insert(QStringLiteral("JOURNAL_STREAM"), QStringLiteral("%1:%2").arg(stream.st_dev).arg(stream.st_ino));
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(log.fileName(), QIODevice::Append);
    process.start(QStringLiteral(KALVOR_SERVER_PROGRAM), {QStringLiteral("serve"), QStringLiteral("--config"), settings.fileName()});
  }
  QFile log;
  QProcess process;
};

class ServiceManagerTest : public QObject {
  Q_OBJECT

 private slots:
  void statesArrive()
  {
    QTemporaryDir folder;
    for (const QByteArray& name : {folder.filePath(QStringLiteral("notify")).toUtf8(),
                                   "@kalvor-test-" + QByteArray::number(QCoreApplication::applicationPid())}) {
      FakeManager manager(name);
      QVERIFY(manager.bound);
      QVERIFY(notifyServiceManager("READY=1\nSTATUS=x"));
      QCOMPARE(manager.receive(), QByteArray("READY=1\nSTATUS=x"));
    }
  }

  void nobodyThere()
  {
    QVERIFY(!notifyServiceManager("READY=1"));
    for (const QByteArray& name : {QByteArray("relative"), QByteArray("/nowhere/at/all"), QByteArray("@"), QByteArray(200, '/')}) {
      qputenv("NOTIFY_SOCKET", name);
      QVERIFY2(!notifyServiceManager("READY=1"), name.constData());
    }
    qunsetenv("NOTIFY_SOCKET");
  }

  void watchdog_data()
  {
    QTest::addColumn<QByteArray>("microseconds");
    QTest::addColumn<QByteArray>("process");
    QTest::addColumn<int>("milliseconds");
    const QByteArray own = QByteArray::number(QCoreApplication::applicationPid());
    QTest::newRow("half") << QByteArray("60000000") << QByteArray() << 30000;
    QTest::newRow("ours") << QByteArray("60000000") << own << 30000;
    QTest::newRow("another's") << QByteArray("60000000") << QByteArray("1") << 0;
    QTest::newRow("tiny") << QByteArray("100") << QByteArray() << 1;
    QTest::newRow("none") << QByteArray() << QByteArray() << 0;
    QTest::newRow("no number") << QByteArray("soon") << QByteArray() << 0;
    QTest::newRow("negative") << QByteArray("-5") << QByteArray() << 0;
  }
  void watchdog()
  {
    QFETCH(QByteArray, microseconds);
    QFETCH(QByteArray, process);
    QFETCH(int, milliseconds);
    qputenv("WATCHDOG_USEC", microseconds);
    qputenv("WATCHDOG_PID", process);
    const auto interval = watchdogInterval();
    qunsetenv("WATCHDOG_USEC");
    qunsetenv("WATCHDOG_PID");
    QCOMPARE(int(interval.count()), milliseconds);
  }

  void theProgramIsAService()
  {
    QTemporaryDir folder;
    FakeManager manager(folder.filePath(QStringLiteral("notify")).toUtf8());
    Service service(folder);
    QByteArray state;
    while (service.process.state() != QProcess::NotRunning && state.isEmpty()) {
      state = manager.receive();  // a first start makes the demo company
    }
    QVERIFY2(state.startsWith("READY=1\nSTATUS=port "), state.constData());
    const QString digest = QString::fromLatin1(QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex());
    QString session;
    {
      SocketConnection socket;
      socket.Port = state.mid(state.lastIndexOf(' ') + 1).toInt();
      ConnectionBroker broker(&socket);
      broker.Connect();
      const auto logIn = [&](const QString& given) {
        VariantArray arguments{QStringLiteral("SUPERVSR"), given, QString(), QStringLiteral("1"), QString()};
        const int result = broker.Call(QStringLiteral("LogIn"), arguments).toInt();
        return std::pair(result, arguments[4].toString());
      };
      session = logIn(digest).second;
      QVERIFY(session.size() > 20);
      QVERIFY(logIn(QStringLiteral("5ecret5ecret5ecret5ecret5ecret00")).first != 0);
      broker.setSession(session);
      VariantArray statement{QStringLiteral("DELETE FROM N_Users WHERE Id = 'тайна'")};
      QVERIFY_THROWS_EXCEPTION(RpcError, broker.Call(QStringLiteral("ExecuteSQLScript"), statement));
    }
    service.process.terminate();
    QVERIFY(service.process.waitForFinished());
    QCOMPARE(service.process.exitCode(), 0);
    QCOMPARE(manager.receive(), QByteArray("STOPPING=1"));
    const QByteArray log = service.log.readAll();
    for (const QByteArray& line : log.trimmed().split('\n')) {
      QVERIFY2(line.startsWith("<6>") || line.startsWith("<4>"), line.constData());
      QCOMPARE(line.startsWith("<4>"), line.contains(" level=warning "));
    }
    QVERIFY(log.contains("event=log_in ") && log.contains("event=refused "));
    for (const QByteArray& secret : {digest.toUtf8(), session.toUtf8(), QByteArray("5ecret"), QByteArray("тайна")}) {
      QVERIFY2(!log.contains(secret), log.constData());
    }
  }

  void aRunningServerSaysSo()
  {
    FakeManager manager("@kalvor-watchdog-" + QByteArray::number(QCoreApplication::applicationPid()));
    qputenv("WATCHDOG_USEC", "100000");
    ServerOptions options;
    options.database = QStringLiteral(":memory:");
    options.port = 0;
    ApplicationServer server(options);
    server.start();
    qunsetenv("WATCHDOG_USEC");
    QCOMPARE(manager.receive(), QByteArray("WATCHDOG=1"));
    QCOMPARE(manager.receive(), QByteArray("WATCHDOG=1"));
  }
};

static RegisterTest<ServiceManagerTest> serviceManagerTest;

}  // namespace kalvor::testing

#include "service_manager_test.moc"
