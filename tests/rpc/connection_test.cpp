// The client's connection against a server that answers, refuses, keeps silent or goes away.
#include <QTest>
#include <QThread>

#include "rpc/connection.h"
#include "scripted_server.h"

using namespace Qt::StringLiterals;
using namespace kalvor;
using kalvor::test::ScriptedServer;

namespace {

int codeOf(const std::function<void()>& action, QString* text = nullptr)
{
  try {
    action();
  } catch (const RpcError& error) {
    if (text)
      *text = error.message();
    return error.code();
  }
  return 0;
}

struct Client {
  explicit Client(quint16 port)
  {
    connection.Port = port;
    connection.answerTimeoutMs = 3000;
  }
  SocketConnection connection;
  ConnectionBroker broker{&connection};
};

QByteArray done(const Frame& call) { return encodeAnswer(call.id, 0, call.arguments); }

}  // namespace

class ConnectionTest : public QObject {
  Q_OBJECT

 private slots:
  void argumentsComeBackAsTheServerLeavesThem()
  {
    ScriptedServer server([](const Frame& call) {
      VariantArray arguments = call.arguments;
      arguments[1] = u"промених го"_s;
      return encodeAnswer(call.id, 5, arguments, 0b010);
    });
    Client client(server.port());
    client.broker.Connect();
    VariantArray arguments{1, 2, 3};
    QCOMPARE(client.broker.Call(u"Anything"_s, arguments), QVariant(5));
    QCOMPARE(arguments, (VariantArray{1, u"промених го"_s, 3}));
    QVERIFY(client.broker.Connected());
    client.broker.Disconnect();
    QVERIFY(!client.broker.Connected());
  }

  void serverErrorKeepsTheConnection()
  {
    ScriptedServer server([](const Frame& call) {
      return encodeError(call.id, {RpcError::Forbidden, u"Нямате права."_s, u"I1"_s});
    });
    Client client(server.port());
    QString text;
    QCOMPARE(codeOf([&] { client.broker.Call(u"A"_s); }, &text), int(RpcError::Forbidden));
    QCOMPARE(text, u"Нямате права."_s);
    codeOf([&] { client.broker.Call(u"A"_s); });
    QCOMPARE(server.connections(), 1);
  }

  void noServerIsUnreachable()
  {
    quint16 port;
    {
      ScriptedServer server(done);
      port = server.port();
    }
    Client client(port);
    QString text;
    QCOMPARE(codeOf([&] { client.broker.Connect(); }, &text), int(RpcError::Unreachable));
    QVERIFY2(text.startsWith(u"Няма връзка със сървъра 127.0.0.1:%1"_s.arg(port)), qPrintable(text));
    QVERIFY(!client.broker.Connected());
  }

  void brokenBetweenCallsIsMendedAndTheSessionResumed()
  {
    ScriptedServer server(done);
    Client client(server.port());
    client.broker.Connect();
    client.broker.Call(u"First"_s);
    client.broker.setSession(u"s-1"_s);
    server.cut();
    client.broker.Call(u"Second"_s);
    QCOMPARE(server.calls(), QStringList({u"First"_s, u"ResumeSession"_s, u"Second"_s}));
    QCOMPARE(server.connections(), 2);
  }

  void refusedSessionIsNotUsedOn()
  {
    ScriptedServer server([](const Frame& call) { return encodeAnswer(call.id, -1, {}); });
    Client client(server.port());
    client.broker.setSession(u"old"_s);
    QCOMPARE(codeOf([&] { client.broker.Call(u"A"_s); }), int(RpcError::NotLoggedIn));
    QCOMPARE(server.calls(), QStringList({u"ResumeSession"_s}));
    QVERIFY(!client.broker.Connected());
  }

  void callThatMayHaveRunIsRepeatedOnlyWithARequestId_data()
  {
    QTest::addColumn<QString>("requestId");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("times");
    QTest::newRow("without") << QString() << int(RpcError::ConnectionLost) << 1;
    QTest::newRow("with") << u"r1"_s << 0 << 2;
  }
  void callThatMayHaveRunIsRepeatedOnlyWithARequestId()
  {
    QFETCH(QString, requestId);
    QFETCH(int, code);
    QFETCH(int, times);
    std::atomic<int> seen = 0;
    ScriptedServer server([&](const Frame& call) { return ++seen == 1 ? QByteArray() : done(call); });
    Client client(server.port());
    VariantArray none;
    QCOMPARE(codeOf([&] { client.broker.Call(u"Save"_s, none, requestId); }), code);
    QCOMPARE(seen, times);
  }

  void transactionIsNotCarriedOver()
  {
    ScriptedServer server(done);
    Client client(server.port());
    client.broker.Call(u"trStart"_s);
    server.cut();
    QCOMPARE(codeOf([&] { client.broker.Call(u"UpdateClientData"_s); }), int(RpcError::ConnectionLost));
    client.broker.Call(u"trStart"_s);
    QCOMPARE(server.calls(), QStringList({u"trStart"_s, u"trStart"_s}));
  }

  void silenceIsATimeout()
  {
    ScriptedServer server([](const Frame& call) {
      return call.operation == QLatin1String("Sleep") ? QByteArray("") : done(call);
    });
    Client client(server.port());
    client.connection.answerTimeoutMs = 50;
    QCOMPARE(codeOf([&] { client.broker.Call(u"Sleep"_s); }), int(RpcError::Timeout));
    client.connection.answerTimeoutMs = 3000;
    QCOMPARE(client.broker.Call(u"A"_s), QVariant(0));
  }

  void nonsenseIsABadFrame_data()
  {
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("no CBOR") << QByteArray::fromHex("00000001ff");
    QTest::newRow("length") << QByteArray::fromHex("ffffffff00");
    QTest::newRow("other id") << encodeAnswer(999, 0, {});
    QTest::newRow("a call") << encodeCall(1, u"A"_s, {});
  }
  void nonsenseIsABadFrame()
  {
    QFETCH(QByteArray, answer);
    ScriptedServer server([&](const Frame&) { return answer; });
    Client client(server.port());
    QCOMPARE(codeOf([&] { client.broker.Call(u"A"_s); }), int(RpcError::BadFrame));
    QVERIFY(!client.broker.Connected());
  }

  void packetsComeThroughTheirOperations()
  {
    ScriptedServer server([](const Frame& call) {
      DataPacket packet;
      packet.continuation = call.arguments;
      if (call.arguments[0] == QVariant(u"bad"_s))
        return encodeAnswer(call.id, 0, {});
      return encodeAnswer(call.id, QVariant::fromValue(DataPacketPtr(std::make_shared<DataPacket>(packet))), {});
    });
    Client client(server.port());
    const auto first = client.broker.openProvider(u"P1"_s, 32);
    QCOMPARE(first->continuation, QVariant(VariantArray{u"P1"_s, 32}));
    const auto next = client.broker.fetchRecords(u"P1"_s, 7, -1);
    QCOMPARE(next->continuation, QVariant(VariantArray{u"P1"_s, 7, -1}));
    QCOMPARE(server.calls(), QStringList({u"OpenProvider"_s, u"FetchRecords"_s}));
    QCOMPARE(codeOf([&] { client.broker.openProvider(u"bad"_s, 1); }), int(RpcError::BadFrame));
  }

  void otherThreadsAreServed()
  {
    ScriptedServer server([](const Frame& call) {
      return call.operation == QLatin1String("Fail") ? encodeError(call.id, {RpcError::Invalid, u"не"_s, {}})
                                                     : done(call);
    });
    Client client(server.port());
    QVariant result;
    int code = 0;
    const std::unique_ptr<QThread> worker(QThread::create([&] {
      result = client.broker.Call(u"FromAfar"_s);
      code = codeOf([&] { client.broker.Call(u"Fail"_s); });
    }));
    worker->start();
    QTRY_VERIFY(worker->isFinished());
    QCOMPARE(result, QVariant(0));
    QCOMPARE(code, int(RpcError::Invalid));
  }

  void largeAnswersArriveWhole()
  {
    const QString text(3'000'000, u'Ж');
    ScriptedServer server([&](const Frame& call) { return encodeAnswer(call.id, text, {}); });
    Client client(server.port());
    QCOMPARE(client.broker.Call(u"A"_s).toString(), text);
  }
};

QTEST_GUILESS_MAIN(ConnectionTest)
#include "connection_test.moc"
