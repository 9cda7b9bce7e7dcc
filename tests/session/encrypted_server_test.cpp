// The client against the real server over TLS: whom it trusts, what it tells, and that neither end ever hangs.
#include <QElapsedTimer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTest>
#include <QThread>

#include "scratch_documents.h"
#include "scripted_ports.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "session/error_log.h"
#include "session/local_data.h"
#include "session/password_digest.h"
#include "session/server_calls.h"
#include "session/trusted_servers.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int fewSeconds = 8000;
constexpr int settingsForm = 487;

struct Running {
  explicit Running(bool tls)
  {
    server::ServerOptions options;
    options.database = u":memory:"_s;
    options.port = 0;
    options.tls = tls;
    server = std::make_unique<server::ApplicationServer>(options);
    server->start();
  }
  quint16 port() const { return server->port(); }
  std::unique_ptr<server::ApplicationServer> server;
};

// A workplace with settings of its own.
struct Workplace {
  explicit Workplace(quint16 port, Encryption encryption = Encryption::Always)
  {
    QDir().mkpath(documents.path(u"Kalvor"_s));
    KalvorClientINIFileName = u"client.ini"_s;
    documents.write(ini, "[Server]\nServerPort=1\n; бележка\n");
    keepEncryption({u"127.0.0.1"_s, port}, encryption);
    place.Port = port;
    place.connectTimeoutMs = 3000;
    place.answerTimeoutMs = 6000;
    place.trust = &servers;
  }
  QString line() const { return u"127.0.0.1:%1="_s.arg(place.Port); }
  void know(const QString& fingerprint)
  {
    documents.write(ini, documents.read(ini) + "\n[TrustedServers]\n" + (line() + fingerprint).toUtf8() + "\n");
  }
  // The error code of a connection and a call, 0 = answered.
  int visit()
  {
    ConnectionBroker broker(&place);
    return codeOf([&] {
      broker.Connect();
      broker.Call(u"GetCompaniesList"_s, {Variant()});
    });
  }
  int codeOf(const std::function<void()>& action)
  {
    QElapsedTimer timer;
    timer.start();
    int code = 0;
    text.clear();
    try {
      action();
    } catch (const RpcError& error) {
      code = error.code();
      text = error.message();
    }
    ms = timer.elapsed();
    return code;
  }

  const QString ini = u"Kalvor/client.ini"_s;
  ScratchDocuments documents;
  ScriptedPrompt prompt;
  TrustedServers servers;
  SocketConnection place;
  QString text;
  qint64 ms = 0;
};

const QString foreignFingerprint = fingerprintText(QByteArray(32, '\x5a'));

}  // namespace

class EncryptedServerTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    encrypted_ = std::make_unique<Running>(true);
    plain_ = std::make_unique<Running>(false);
  }
  void cleanupTestCase()
  {
    encrypted_.reset();
    plain_.reset();
  }

  void whomTheClientTrusts_data()
  {
    QTest::addColumn<QString>("known");      // "right", or as it stands in the file
    QTest::addColumn<QString>("given");
    QTest::addColumn<bool>("attended");
    QTest::addColumn<bool>("accepts");
    QTest::addColumn<int>("questions");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("keptAfter");
    const int no = RpcError::Untrusted;
    QTest::newRow("known") << "right" << "" << true << false << 0 << 0 << true;
    QTest::newRow("known, in small letters without colons") << "plain" << "" << true << false << 0 << 0 << true;
    QTest::newRow("known as another") << foreignFingerprint << "" << true << true << 0 << no << false;
    QTest::newRow("known, but the line is damaged") << "AB:CD" << "" << true << true << 0 << no << false;
    QTest::newRow("first contact, accepted") << "" << "" << true << true << 1 << 0 << true;
    QTest::newRow("first contact, declined") << "" << "" << true << false << 1 << no << false;
    QTest::newRow("first contact, nobody there") << "" << "" << false << true << 0 << no << false;
    QTest::newRow("known, nobody there") << "right" << "" << false << true << 0 << 0 << true;
    QTest::newRow("given, nobody there") << "" << "right" << false << true << 0 << 0 << false;
    QTest::newRow("another one given") << "right" << foreignFingerprint << false << true << 0 << no << true;
  }
  void whomTheClientTrusts()
  {
    QFETCH(QString, known);
    QFETCH(QString, given);
    QFETCH(bool, attended);
    QFETCH(bool, accepts);
    QFETCH(int, questions);
    QFETCH(bool, keptAfter);
    const QByteArray fingerprint = encrypted_->server->fingerprint();
    const QString right = fingerprintText(fingerprint);
    Workplace desk(encrypted_->port());
    if (!known.isEmpty())
      desk.know(known == u"right" ? right : known == u"plain" ? QString::fromLatin1(fingerprint.toHex()) : known);
    desk.servers.setGivenFingerprint(given == u"right" ? fingerprint : fingerprintOf(given));
    desk.servers.setUnattended(!attended);
    desk.prompt.answers = {accepts ? PromptButton::Yes : PromptButton::No};
    QTEST(desk.visit(), "code");
    QCOMPARE(desk.prompt.messages.size(), questions);
    for (const QString& message : desk.prompt.messages)
      QVERIFY(message.contains(right.left(23)) && message.contains(right.right(23)));
    if (!desk.text.isEmpty() && questions == 0 && known != u"AB:CD")
      QVERIFY2(desk.text.contains(right.left(23)), qPrintable(desk.text));
    const QByteArray file = desk.documents.read(desk.ini);
    QCOMPARE(file.contains((desk.line() + right).toUtf8()) || known == u"plain", keptAfter);
    QVERIFY(file.contains("ServerPort=1") && file.contains("; бележка"));
    // Whoever was accepted is not asked about again, also by a program that starts anew.
    if (questions == 1 && accepts) {
      TrustedServers later;
      desk.place.trust = &later;
      QCOMPARE(desk.visit(), 0);
      QCOMPARE(desk.prompt.messages.size(), 1);
    }
  }

  // Nothing of a password goes to a server that is not the known one, on a new connection in the middle either.
  void aServerThatIsReplacedGetsNothing()
  {
    auto first = std::make_unique<Running>(true);
    Workplace desk(first->port());
    desk.prompt.answers = {PromptButton::Yes};
    ConnectionBroker broker(&desk.place);
    broker.Connect();
    broker.setSession(u"secret"_s);
    first.reset();
    server::ServerOptions options;
    options.database = u":memory:"_s;
    options.port = desk.place.Port;
    options.tls = true;
    server::ApplicationServer second(options);
    second.start();
    QCOMPARE(desk.codeOf([&] { broker.Call(u"servername"_s); }), int(RpcError::Untrusted));
    QVERIFY2(desk.text.contains(u"[TrustedServers]"_s) && desk.text.contains(fingerprintText(second.fingerprint()).left(23)),
             qPrintable(desk.text));
    QCOMPARE(desk.prompt.messages.size(), 1);
  }

  void anotherThreadIsNeverAsked()
  {
    Workplace desk(encrypted_->port());
    int code = 0;
    const std::unique_ptr<QThread> worker(QThread::create([&] { code = desk.visit(); }));
    worker->start();
    QVERIFY(worker->wait(fewSeconds));
    QCOMPARE(code, int(RpcError::Untrusted));
    QVERIFY(desk.prompt.messages.isEmpty());
  }

  void endsThatSpeakDifferently_data()
  {
    QTest::addColumn<bool>("serverEncrypts");
    QTest::addColumn<int>("clientEncryption");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("says");
    QTest::newRow("plain client, encrypted server")
        << true << int(Encryption::Never) << int(RpcError::EncryptedOnly) << "--tls";
    QTest::newRow("loopback is plain by itself")
        << true << int(Encryption::ByAddress) << int(RpcError::EncryptedOnly) << "--tls";
    QTest::newRow("encrypting client, plain server")
        << false << int(Encryption::Always) << int(RpcError::Unreachable) << "--plaintext";
    QTest::newRow("both plain") << false << int(Encryption::ByAddress) << 0 << "";
  }
  void endsThatSpeakDifferently()
  {
    QFETCH(bool, serverEncrypts);
    QFETCH(int, clientEncryption);
    QFETCH(QString, says);
    Workplace desk((serverEncrypts ? encrypted_ : plain_)->port(), Encryption(clientEncryption));
    QTEST(desk.visit(), "code");
    QVERIFY2(desk.text.contains(says), qPrintable(desk.text));
    QVERIFY2(desk.ms < 2000, qPrintable(QString::number(desk.ms)));
  }

  // Something listens and says nothing, or not what a server says.
  void notAServer_data()
  {
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("silence") << QByteArray();
    QTest::newRow("text") << QByteArray("220 mail.example ESMTP\r\n");
    QTest::newRow("half a record") << QByteArray::fromHex("160303010002");
    QTest::newRow("zeros") << QByteArray(4096, '\0');
  }
  void notAServer()
  {
    QFETCH(QByteArray, answer);
    QTcpServer listener;
    listener.listen(QHostAddress::LocalHost);
    connect(&listener, &QTcpServer::newConnection, this, [&] { listener.nextPendingConnection()->write(answer); });
    Workplace desk(listener.serverPort());
    desk.place.connectTimeoutMs = 1000;
    int code = 0;
    const std::unique_ptr<QThread> worker(QThread::create([&] { code = desk.visit(); }));
    worker->start();
    QTRY_VERIFY_WITH_TIMEOUT(worker->isFinished(), fewSeconds);
    QCOMPARE(code, int(RpcError::Unreachable));
    QVERIFY2(desk.text.contains(u"TLS"_s), qPrintable(desk.text));
  }

  // Peers that begin a handshake and stop, or that send rubbish, are put out; others are served meanwhile.
  void halfAHandshake_data()
  {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("one byte") << QByteArray("\x16") << false;
    QTest::newRow("half a hello") << QByteArray::fromHex("1603010200010001fc0303") << false;
    QTest::newRow("half a frame") << QByteArray::fromHex("00000017") << false;
    QTest::newRow("a frame too long") << QByteArray::fromHex("7fffffff00") << true;
    QTest::newRow("a broken hello") << QByteArray::fromHex("160301000401000000") << true;
    QTest::newRow("a request of another kind") << QByteArray("GET / HTTP/1.1\r\n\r\n") << true;
  }
  void halfAHandshake()
  {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, atOnce);
    Workplace desk(encrypted_->port());
    desk.servers.setGivenFingerprint(encrypted_->server->fingerprint());
    std::vector<std::unique_ptr<QTcpSocket>> stalled;
    for (int i = 0; i < 20; ++i) {
      stalled.push_back(std::make_unique<QTcpSocket>());
      stalled.back()->connectToHost(u"127.0.0.1"_s, encrypted_->port());
      QVERIFY(stalled.back()->waitForConnected());
      stalled.back()->write(bytes);
      stalled.back()->flush();
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(desk.visit(), 0);
    QVERIFY2(desk.ms < 1000, qPrintable(QString::number(desk.ms)));
    for (const auto& socket : stalled)
      QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::UnconnectedState, fewSeconds);
    QCOMPARE(timer.elapsed() < 2000, atOnce);
  }

  void oldVersionsAreRefused_data()
  {
    QTest::addColumn<int>("protocol");
    QTest::addColumn<bool>("accepted");
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QTest::newRow("1.1") << int(QSsl::TlsV1_1) << false;
    QT_WARNING_POP
    QTest::newRow("1.2") << int(QSsl::TlsV1_2) << true;
    QTest::newRow("1.3") << int(QSsl::TlsV1_3) << true;
  }
  void oldVersionsAreRefused()
  {
    QFETCH(int, protocol);
    QSslSocket socket;
    QSslConfiguration configuration;
    configuration.setProtocol(QSsl::SslProtocol(protocol));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket.setSslConfiguration(configuration);
    socket.connectToHostEncrypted(u"127.0.0.1"_s, encrypted_->port());
    QTEST(socket.waitForEncrypted(3000), "accepted");
  }

  // The connection dies under a call, on either side; the next call makes a new one, over TLS and with the same pin.
  void killedInTheMiddle()
  {
    Workplace desk(encrypted_->port());
    desk.servers.setGivenFingerprint(encrypted_->server->fingerprint());
    ConnectionBroker broker(&desk.place);
    broker.Connect();
    const auto ask = [&] { broker.Call(u"GetCompaniesList"_s, {Variant()}); };
    QCOMPARE(desk.codeOf(ask), 0);
    encrypted_->server->stop();
    QCOMPARE(desk.codeOf(ask), int(RpcError::Unreachable));
    encrypted_->server->start();
    desk.place.Port = encrypted_->port();
    keepEncryption({u"127.0.0.1"_s, desk.place.Port}, Encryption::Always);
    QCOMPARE(desk.codeOf(ask), 0);
    // A client that dies in the middle of a frame leaves the others alone.
    for (int i = 0; i < 10; ++i) {
      QSslSocket socket;
      socket.setPeerVerifyMode(QSslSocket::VerifyNone);
      socket.connectToHostEncrypted(u"127.0.0.1"_s, encrypted_->port());
      QVERIFY(socket.waitForEncrypted(3000));
      socket.write(QByteArray::fromHex("00002000840007"));
      socket.flush();
      socket.abort();
    }
    QCOMPARE(desk.codeOf(ask), 0);
  }

  // Calls and answers far beyond every buffer on the way.
  void largeFramesPass_data()
  {
    QTest::addColumn<bool>("tls");
    QTest::newRow("over TLS") << true;
    QTest::newRow("in plain text") << false;
  }
  void largeFramesPass()
  {
    QFETCH(bool, tls);
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    Running own(tls);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = demo.items = 5;
    demo.invoices = 1;
    server::createDemoCompany(*own.server->core().openWriter(), demo);
    Workplace desk(own.port(), tls ? Encryption::Always : Encryption::ByAddress);
    desk.servers.setGivenFingerprint(own.server->fingerprint());
    ConnectionBroker broker(&desk.place);
    VariantArray logIn{u"SUPERVSR"_s, passwordDigest(server::demoPassword()), QString(), u"1"_s, QString()};
    QCOMPARE(broker.Call(u"LogIn"_s, logIn).toInt(), 0);
    for (const qsizetype size : {1000, 1'000'000, 4'000'000}) {
      const QString text(size, u'Ж');
      QCOMPARE(broker.Call(u"UpdateUserSettings"_s, {VariantArray{text}, u"'SUPERVSR'"_s}), Variant(0));
      const QString provider = createDynamicProvider(broker);
      QCOMPARE(requestData(broker, settingsForm, -1, provider, {}, QString(), {{u"ID"_s, u"SUPERVSR"_s}, {u"Comp_ID"_s, u"1"_s}}), 0);
      const DataPacketPtr packet = broker.openProvider(provider, -1);
      QCOMPARE(packet->records.rows, 1);
      QVERIFY(packet->records.value(0, packet->records.indexOf(u"Settings"_s)).toString() == text);
    }
  }

 private:
  std::unique_ptr<Running> encrypted_;
  std::unique_ptr<Running> plain_;
};

QTEST_GUILESS_MAIN(EncryptedServerTest)
#include "encrypted_server_test.moc"
