#include "server/net/metrics_server.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QThread>

#include "server/net/call_figures.h"
#include "server/server.h"
#include "server/server_core.h"
#include "server/test_database.h"
#include "server/wire_caller.h"
#include "server_demo/demo_database.h"
#include "several_tests.h"

namespace kalvor::testing {

using namespace kalvor::server;

namespace {

// What a server answers until it closes; events of this thread go on meanwhile.
QByteArray exchange(quint16 port, const QByteArray& request)
{
  QTcpSocket socket;
  socket.connectToHost(QHostAddress::LocalHost, port);
  socket.write(request);
  if (!QTest::qWaitFor([&] { return socket.state() == QAbstractSocket::UnconnectedState; }, 8000)) {
    return "open";
  }
  return socket.readAll();
}

QByteArray statusOf(const QByteArray& answer) { return answer.left(12); }
QByteArray get(const QByteArray& path) { return "GET " + path + " HTTP/1.0\r\n\r\n"; }

}  // namespace

class MetricsTest : public QObject {
  Q_OBJECT

 private slots:
  void requests_data()
  {
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("status");
    const auto row = [](const char* name, const QByteArray& request, const char* status) {
      QTest::newRow(name) << request << QByteArray(status);
    };
    row("health", get("/health"), "HTTP/1.0 200");
    row("health, 1.1 and headers", "GET /health HTTP/1.1\r\nHost: x\r\nAccept: */*\r\n\r\n", "HTTP/1.0 200");
    row("a query", get("/health?x=/metrics"), "HTTP/1.0 200");
    row("bare line ends", "GET /metrics HTTP/1.0\n\n", "HTTP/1.0 200");
    row("head", "HEAD /metrics HTTP/1.0\r\n\r\n", "HTTP/1.0 200");
    row("another path", get("/health/"), "HTTP/1.0 404");
    row("upwards", get("/../../etc/passwd"), "HTTP/1.0 404");
    row("post", "POST /health HTTP/1.0\r\n\r\n", "HTTP/1.0 405");
    row("lower case", "get /health HTTP/1.0\r\n\r\n", "HTTP/1.0 405");
    row("no version", "GET /health\r\n\r\n", "HTTP/1.0 400");
    row("another protocol", "GET /health SMTP/1.0\r\n\r\n", "HTTP/1.0 400");
    row("empty", "\r\n\r\n", "HTTP/1.0 400");
    row("bytes", QByteArray(64, '\xFF') + QByteArray(64, '\0') + "\n\n", "HTTP/1.0 400");
    row("too long", QByteArray(100'000, 'A'), "HTTP/1.0 431");
    row("too many headers", "GET /health HTTP/1.0\r\n" + QByteArray("X: y\r\n").repeated(5000), "HTTP/1.0 431");
    row("no end", "GET /health HTTP/1.0\r\n", "");
  }
  void requests()
  {
    QFETCH(QByteArray, request);
    MetricsServer server([] { return DatabaseState{true, 3, 2}; }, [] { return QByteArray("figure 1\n"); });
    QCOMPARE(server.listen(0), QString());
    QTEST(statusOf(exchange(server.port(), request)), "status");
    // Whatever that was, the next one is answered.
    const QByteArray figures = exchange(server.port(), get("/metrics"));
    QVERIFY(figures.contains("figure 1\n") && figures.contains("\nkalvor_sessions 3\n") &&
            figures.contains("\nkalvor_document_locks 2\n") && figures.contains("\nkalvor_database_up 1\n"));
  }

  void whoSaysNothingHoldsUpNobody()
  {
    MetricsServer server([] { return DatabaseState{true, 0, 0}; }, [] { return QByteArray(); });
    QCOMPARE(server.listen(0), QString());
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int i = 0; i < MetricsServer::maxConnections + 5; ++i) {
      silent.push_back(std::make_unique<QTcpSocket>());
      silent.back()->connectToHost(QHostAddress::LocalHost, server.port());
    }
    const auto open = [&] {
      return std::count_if(silent.begin(), silent.end(), [](const auto& s) { return s->state() == QAbstractSocket::ConnectedState; });
    };
    QTRY_COMPARE(int(open()), MetricsServer::maxConnections);
    QTRY_COMPARE_WITH_TIMEOUT(int(open()), 0, MetricsServer::requestMs + 3000);
    QCOMPARE(statusOf(exchange(server.port(), get("/health"))), QByteArray("HTTP/1.0 200"));
  }

  // A database that is slow or away is told within its second, also to those who ask while it is being asked.
  void aSlowDatabase()
  {
    std::atomic<int> pause = 2500;
    MetricsServer server(
        [&] {
          QThread::msleep(ulong(pause.load()));
          return DatabaseState{true, 0, 0};
        },
        [] { return QByteArray(); });
    QCOMPARE(server.listen(0), QString());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(statusOf(exchange(server.port(), get("/health"))), QByteArray("HTTP/1.0 503"));
    QVERIFY(timer.elapsed() >= 900 && timer.elapsed() < 2000);
    QVERIFY(exchange(server.port(), get("/metrics")).contains("\nkalvor_database_up 0\n"));
    pause = 0;
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(exchange(server.port(), get("/health"))), QByteArray("HTTP/1.0 200"), 5000);
  }

  void latenciesFallIntoTheirBuckets()
  {
    using namespace std::chrono_literals;
    CallFigures figures;
    for (const auto time : std::initializer_list<std::chrono::steady_clock::duration>{1ms, 2ms, 30s}) {
      figures.note("A", CallOutcome::Ok, time);
    }
    figures.note("A", CallOutcome::Failed, 0ms);
    const QByteArray text = figures.text();
    for (const char* line : {"kalvor_requests_total{operation=\"A\",outcome=\"ok\"} 3\n",
                             "kalvor_requests_total{operation=\"A\",outcome=\"failed\"} 1\n",
                             "_bucket{operation=\"A\",le=\"0.001\"} 2\n", "_bucket{operation=\"A\",le=\"0.0025\"} 3\n",
                             "_bucket{operation=\"A\",le=\"10\"} 3\n", "_bucket{operation=\"A\",le=\"+Inf\"} 4\n",
                             "_count{operation=\"A\"} 4\n", "_sum{operation=\"A\"} 30.003\n"}) {
      QVERIFY2(text.contains(line), (line + text).constData());
    }
  }

  void aServerCountsItsCalls()
  {
    ServerOptions options;
    options.database = newServerDatabase();
    options.port = 0;
    options.metricsPort = 0;
    ApplicationServer server(options);
    {
      DemoOptions demo = smallDemo();
      const auto writer = server.core().openWriter();
      createDemoCompany(*writer, demo);
    }
    server.start();
    QCOMPARE(exchange(server.port(), "GET /health HTTP/1.0\r\n\r\n"), QByteArray());  // no call: closed
    Caller caller(server.port());
    VariantArray none{Variant()};
    caller.broker.Call(QStringLiteral("GetCompaniesList"), none);
    QVERIFY(Caller::refusal([&] { caller.newProvider(); }) != 0);
    const QByteArray text = exchange(server.metricsPort(), get("/metrics"));
    for (const char* line : {"\nkalvor_requests_total{operation=\"GetCompaniesList\",outcome=\"ok\"} 1\n",
                             "\nkalvor_requests_total{operation=\"CreateDynamicProvider\",outcome=\"refused\"} 1\n",
                             "\nkalvor_bad_frames_total ", "\nkalvor_connections 1\n", "\nkalvor_sessions 0\n",
                             "\nkalvor_queue_length{queue=\"writer\"} 0\n"}) {
      QVERIFY2(text.contains(line), (line + text).constData());
    }
    QVERIFY(exchange(server.metricsPort(), get("/health")).endsWith("{\"status\":\"ok\",\"database\":\"ok\"}\n"));
    const quint16 port = server.metricsPort();
    server.stop();
    QCOMPARE(exchange(port, get("/health")), QByteArray());
  }
};

static RegisterTest<MetricsTest> metricsTest;

}  // namespace kalvor::testing

#include "metrics_test.moc"
