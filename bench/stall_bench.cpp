// A working client beside clients that send half a call, a byte at a time, or never read their answers: its slowest and
// its usual answers against those it gets alone, and what a stalled connection costs the server.
//
//   stall_bench [--calls N] [--stalled N]
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

#include "rpc/frame.h"
#include "server_process.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

double serverMb(qint64 processId)
{
  QFile status(QStringLiteral("/proc/%1/status").arg(processId));
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  for (const QByteArray& row : status.readAll().split('\n'))
    if (row.startsWith("VmRSS:"))
      return row.mid(6).trimmed().split(' ').first().toDouble() / 1024;
  return 0;
}

struct Answers {
  double median = 0, late = 0;  // ms; late: one in a hundred is slower
  double slowest = 0;           // of a round, as the middle one of the rounds has it: one hiccup of the machine says nothing
};

constexpr int rounds = 9;

// First pages of a list.
Answers timed(Workstation& station, int calls)
{
  const QString provider = station.newProvider();
  std::vector<double> times;
  for (int i = 0; i < calls; ++i) {
    QElapsedTimer timer;
    timer.start();
    station.request(120, 0, provider);
    VariantArray arguments{provider, 32};
    station.broker().Call(QStringLiteral("OpenProvider"), arguments);
    times.push_back(timer.nsecsElapsed() / 1e6);
  }
  std::vector<double> slowest;
  const auto round = std::ptrdiff_t(times.size() / rounds);
  for (int i = 0; i < rounds; ++i)
    slowest.push_back(*std::max_element(times.begin() + i * round, times.begin() + (i + 1) * round));
  std::sort(slowest.begin(), slowest.end());
  std::sort(times.begin(), times.end());
  return {times[times.size() / 2], times[times.size() * 99 / 100], slowest[rounds / 2]};
}

// Connections that hold on to the server until told to stop; a thread of their own.
class StalledClients {
 public:
  StalledClients(quint16 port, int count, const QString& session)
      : thread_([=, this] { run(port, count, session); })
  {
    while (!ready_)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ~StalledClients()
  {
    stop_ = true;
    thread_.join();
  }

 private:
  void run(quint16 port, int count, const QString& session)
  {
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    for (int i = 0; i < count; ++i) {
      auto socket = std::make_unique<QTcpSocket>();
      socket->setReadBufferSize(1024);
      socket->connectToHost(QStringLiteral("127.0.0.1"), port);
      socket->waitForConnected();
      if (i % 3 == 0) {
        socket->write(QByteArray::fromHex("0000300084"));
      } else if (i % 3 == 1) {
        socket->write(QByteArray::fromHex("00003000"));
      } else {
        socket->write(encodeCall(1, QStringLiteral("ResumeSession"), {session}));
        socket->waitForReadyRead(5000);
        for (int question = 0; question < 2000; ++question)
          socket->write(encodeCall(2, QStringLiteral("GetFieldsDescription"), {QStringLiteral("121"), 0, Variant()}));
      }
      socket->waitForBytesWritten(100);
      sockets.push_back(std::move(socket));
    }
    ready_ = true;
    while (!stop_) {
      for (size_t i = 1; i < sockets.size(); i += 3) {
        sockets[i]->write("x", 1);
        sockets[i]->waitForBytesWritten(10);
      }
      std::this_thread::sleep_for(std::chrono::seconds(1));
    }
  }

  std::atomic<bool> ready_ = false;
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOptions({{QStringLiteral("calls"), QString(), QStringLiteral("N"), QStringLiteral("3600")},
                     {QStringLiteral("stalled"), QString(), QStringLiteral("N"), QStringLiteral("60")}});
  parser.process(application);
  const int calls = parser.value(QStringLiteral("calls")).toInt();
  const int stalled = parser.value(QStringLiteral("stalled")).toInt();
  const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/kalvor-server");
  try {
    QTemporaryDir folder;
    ServerProcess server;
    if (server.start(program, folder.filePath(QStringLiteral("bench.db"))) < 0)
      throw DataError(QStringLiteral("start"));
    Workstation station(server.port());
    timed(station, calls / 10 + 1);
    const Answers alone = timed(station, calls);
    const double before = serverMb(server.processId());
    double after = 0;
    Answers beside;
    {
      const StalledClients others(server.port(), stalled, station.session());
      std::this_thread::sleep_for(std::chrono::seconds(1));
      beside = timed(station, calls);
      after = serverMb(server.processId());
    }
    line("usual answer beside stalled clients", beside.median, "alone", alone.median);
    line("answer slower than 99 of 100, beside them", beside.late, "alone", alone.late);
    line("slowest answer of a round beside them", beside.slowest, "alone", alone.slowest);
    std::printf("%-46s %10.2f MB each (%d of them, server %.1f MB before, %.1f MB after)\n", "memory of a stalled client",
                (after - before) / stalled, stalled, before, after);
  } catch (const DataError& error) {
    std::printf("FAILED %s\n", qPrintable(error.message()));
    return 1;
  }
  return 0;
}
