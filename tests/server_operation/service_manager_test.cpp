#include "server/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <cstddef>
#include <cstring>

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
