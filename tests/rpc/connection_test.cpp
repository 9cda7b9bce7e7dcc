// The client's connection against a server that answers, refuses, keeps silent or goes away.
#include <QTest>
#include <QThread>

#include "rpc/connection.h"
#include "scripted_server.h"

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
      arguments[1] = QStringLiteral("промених го");
      return encodeAnswer(call.id, 5, arguments, 0b010);
    });
    Client client(server.port());
    client.broker.Connect();
    VariantArray arguments{1, 2, 3};
    QCOMPARE(client.broker.Call(QStringLiteral("Anything"), arguments), QVariant(5));
    QCOMPARE(arguments, (VariantArray{1, QStringLiteral("промених го"), 3}));
    QVERIFY(client.broker.Connected());
    client.broker.Disconnect();
    QVERIFY(!client.broker.Connected());
  }

  void serverErrorKeepsTheConnection()
  {
    ScriptedServer server([](const Frame& call) {
      return encodeError(call.id, {RpcError::Forbidden, QStringLiteral("Нямате права."), QStringLiteral("I1")});
    });
    Client client(server.port());
    QString text;
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("A")); }, &text), int(RpcError::Forbidden));
    QCOMPARE(text, QStringLiteral("Нямате права."));
    codeOf([&] { client.broker.Call(QStringLiteral("A")); });
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
    QVERIFY2(text.startsWith(QStringLiteral("Няма връзка със сървъра 127.0.0.1:%1").arg(port)), qPrintable(text));
    QVERIFY(!client.broker.Connected());
  }

  void brokenBetweenCallsIsMendedAndTheSessionResumed()
  {
    ScriptedServer server(done);
    Client client(server.port());
    client.broker.Connect();
    client.broker.Call(QStringLiteral("First"));
    client.broker.setSession(QStringLiteral("s-1"));
    server.cut();
    client.broker.Call(QStringLiteral("Second"));
    QCOMPARE(server.calls(), QStringList({QStringLiteral("First"), QStringLiteral("ResumeSession"), QStringLiteral("Second")}));
    QCOMPARE(server.connections(), 2);
  }

  void refusedSessionIsNotUsedOn()
  {
    ScriptedServer server([](const Frame& call) { return encodeAnswer(call.id, -1, {}); });
    Client client(server.port());
    client.broker.setSession(QStringLiteral("old"));
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("A")); }), int(RpcError::NotLoggedIn));
    QCOMPARE(server.calls(), QStringList({QStringLiteral("ResumeSession")}));
    QVERIFY(!client.broker.Connected());
  }

  void callThatMayHaveRunIsRepeatedOnlyWithARequestId_data()
  {
    QTest::addColumn<QString>("requestId");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("times");
    QTest::newRow("without") << QString() << int(RpcError::ConnectionLost) << 1;
    QTest::newRow("with") << QStringLiteral("r1") << 0 << 2;
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
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("Save"), none, requestId); }), code);
    QCOMPARE(seen, times);
  }

  void transactionIsNotCarriedOver()
  {
    ScriptedServer server(done);
    Client client(server.port());
    client.broker.Call(QStringLiteral("trStart"));
    server.cut();
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("UpdateClientData")); }), int(RpcError::ConnectionLost));
    client.broker.Call(QStringLiteral("trStart"));
    QCOMPARE(server.calls(), QStringList({QStringLiteral("trStart"), QStringLiteral("trStart")}));
  }

  void silenceIsATimeout()
  {
    ScriptedServer server([](const Frame& call) {
      return call.operation == QLatin1String("Sleep") ? QByteArray("") : done(call);
    });
    Client client(server.port());
    client.connection.answerTimeoutMs = 50;
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("Sleep")); }), int(RpcError::Timeout));
    client.connection.answerTimeoutMs = 3000;
    QCOMPARE(client.broker.Call(QStringLiteral("A")), QVariant(0));
  }

  void nonsenseIsABadFrame_data()
  {
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("no CBOR") << QByteArray::fromHex("00000001ff");
    QTest::newRow("length") << QByteArray::fromHex("ffffffff00");
    QTest::newRow("other id") << encodeAnswer(999, 0, {});
    QTest::newRow("a call") << encodeCall(1, QStringLiteral("A"), {});
  }
  void nonsenseIsABadFrame()
  {
    QFETCH(QByteArray, answer);
    ScriptedServer server([&](const Frame&) { return answer; });
    Client client(server.port());
    QCOMPARE(codeOf([&] { client.broker.Call(QStringLiteral("A")); }), int(RpcError::BadFrame));
    QVERIFY(!client.broker.Connected());
  }

  void packetsComeThroughTheirOperations()
  {
    ScriptedServer server([](const Frame& call) {
      DataPacket packet;
      packet.continuation = call.arguments;
      if (call.arguments[0] == QVariant(QStringLiteral("bad")))
        return encodeAnswer(call.id, 0, {});
      return encodeAnswer(call.id, QVariant::fromValue(DataPacketPtr(std::make_shared<DataPacket>(packet))), {});
    });
    Client client(server.port());
    const auto first = client.broker.openProvider(QStringLiteral("P1"), 32);
    QCOMPARE(first->continuation, QVariant(VariantArray{QStringLiteral("P1"), 32}));
    const auto next = client.broker.fetchRecords(QStringLiteral("P1"), 7, -1);
    QCOMPARE(next->continuation, QVariant(VariantArray{QStringLiteral("P1"), 7, -1}));
    QCOMPARE(server.calls(), QStringList({QStringLiteral("OpenProvider"), QStringLiteral("FetchRecords")}));
    QCOMPARE(codeOf([&] { client.broker.openProvider(QStringLiteral("bad"), 1); }), int(RpcError::BadFrame));
  }

  void otherThreadsAreServed()
  {
    ScriptedServer server([](const Frame& call) {
      return call.operation == QLatin1String("Fail") ? encodeError(call.id, {RpcError::Invalid, QStringLiteral("не"), {}})
                                                     : done(call);
    });
    Client client(server.port());
    QVariant result;
    int code = 0;
    const std::unique_ptr<QThread> worker(QThread::create([&] {
      result = client.broker.Call(QStringLiteral("FromAfar"));
      code = codeOf([&] { client.broker.Call(QStringLiteral("Fail")); });
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
    QCOMPARE(client.broker.Call(QStringLiteral("A")).toString(), text);
  }
};

QTEST_GUILESS_MAIN(ConnectionTest)
#include "connection_test.moc"
