// Clients that send half a call, a byte at a time, or never read: closed after a while, one address does not take every
// place, and whoever works beside them is answered.
#include <QTcpSocket>
#include <QtEndian>
#include <QtTest>

#include "rpc/frame.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "several_tests.h"
#include "test_database.h"
#include "wire_caller.h"

namespace kalvor::testing {

class StalledClientsTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    server::ServerOptions options;
    options.database = newServerDatabase();
    options.port = 0;
    options.limits.firstCallMs = 1500;
    options.limits.transferMs = 600;
    options.limits.bytesASecond = 1024 * 1024;
    options.limits.lookAfterEveryMs = 50;
    options.limits.beforeLogInOfOnePeer = 8;
    options.limits.ofOnePeer = 12;
    server_ = std::make_unique<server::ApplicationServer>(options);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 5;
    demo.items = 5;
    demo.invoices = 5;
    server::createDemoCompany(*server_->core().openWriter(), demo);
    server_->start();
  }
  void cleanupTestCase() { server_.reset(); }

  void halfACall_data()
  {
    QTest::addColumn<QByteArray>("begin");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a length") << QByteArray::fromHex("0000");
    QTest::newRow("half a call") << QByteArray::fromHex("0000001784000766");
  }
  void halfACall()
  {
    QFETCH(QByteArray, begin);
    const auto worker = loggedIn();
    QTcpSocket socket;
    connectTo(socket);
    socket.write(begin);
    QTRY_VERIFY_WITH_TIMEOUT(socket.state() == QAbstractSocket::UnconnectedState, 10000);
    QVERIFY(!worker->broker.Call(QStringLiteral("servername")).toString().isEmpty());
  }

  // Bytes that keep coming do not keep the connection: a call that would take hours is given up.
  void aByteAtATime()
  {
    QTcpSocket socket;
    connectTo(socket);
    socket.write(QByteArray::fromHex("00003000"));
    for (int sent = 0; sent < 200 && socket.state() == QAbstractSocket::ConnectedState; ++sent) {
      socket.write("x", 1);
      QTest::qWait(50);
    }
    QVERIFY(socket.state() == QAbstractSocket::UnconnectedState);
  }

  // A logged-in one that asks and never reads: the server stops reading from it, and then closes it.
  void neverReads()
  {
    const auto worker = loggedIn();
    QTcpSocket socket;
    socket.setReadBufferSize(1024);
    connectTo(socket);
    QString session;
    {
      const auto other = loggedIn(&session);
    }
    socket.write(call(QStringLiteral("ResumeSession"), {session}));
    QVERIFY(socket.waitForReadyRead(5000));
    const QByteArray question = call(QStringLiteral("GetFieldsDescription"), {QStringLiteral("121"), 0, Variant()});
    qint64 written = 0;
    for (int i = 0; i < 200'000 && socket.state() == QAbstractSocket::ConnectedState && socket.bytesToWrite() < 64 * 1024 * 1024; ++i) {
      written += socket.write(question);
      if (i % 100 == 0) {
        QTest::qWait(1);
      }
    }
    QTRY_VERIFY_WITH_TIMEOUT(socket.state() == QAbstractSocket::UnconnectedState, 20000);
    QVERIFY(written > 0);
    QVERIFY(!worker->broker.Call(QStringLiteral("servername")).toString().isEmpty());
  }

  // Whoever is logged in and thinks is not stalled.
  void silenceIsNoStall()
  {
    const auto worker = loggedIn();
    QTest::qWait(2500);
    QVERIFY(!worker->broker.Call(QStringLiteral("servername")).toString().isEmpty());
  }

  void placesOfOneAddress()
  {
    std::vector<std::unique_ptr<Caller>> workers;
    for (int i = 0; i < 3; ++i) {
      workers.push_back(loggedIn());
    }
    std::vector<std::unique_ptr<QTcpSocket>> strangers;
    int held = 0;
    for (int i = 0; i < 20; ++i) {
      strangers.push_back(std::make_unique<QTcpSocket>());
      connectTo(*strangers.back());
    }
    QTest::qWait(300);
    for (const auto& socket : strangers) {
      held += socket->state() == QAbstractSocket::ConnectedState;
    }
    QCOMPARE(held, 8);
    QVERIFY(!workers.front()->broker.Call(QStringLiteral("servername")).toString().isEmpty());
    // Their places are free again when they are gone.
    strangers.clear();
    QTest::qWait(200);
    QVERIFY(loggedIn());
  }

 private:
  static QByteArray call(const QString& operation, const VariantArray& arguments)
  {
    return encodeCall(1, operation, arguments);
  }
  void connectTo(QTcpSocket& socket)
  {
    socket.connectToHost(QStringLiteral("127.0.0.1"), server_->port());
    QVERIFY(socket.waitForConnected());
  }
  std::unique_ptr<Caller> loggedIn(QString* session = nullptr)
  {
    auto caller = std::make_unique<Caller>(server_->port());
    VariantArray arguments{QStringLiteral("SUPERVSR"), QString::fromLatin1(QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex()),
                           QString(), QStringLiteral("1"), QString()};
    if (caller->broker.Call(QStringLiteral("LogIn"), arguments).toInt() != 0) {
      qFatal("log-in");
    }
    if (session) {
      *session = arguments[4].toString();
    }
    return caller;
  }

  std::unique_ptr<server::ApplicationServer> server_;
};

static RegisterTest<StalledClientsTest> stalledClientsTest;

}  // namespace kalvor::testing

#include "stalled_clients_test.moc"
