// Clients take numbers of one series as fast as they can, a tenth of the transactions being rolled back after their number
// was counted: no number is left out, none is given twice.
//
//   give_numbers --server FILE [--numbers N] [--clients N] [--servers N] [--postgres]
//
// --postgres: on a database of the cluster that KALVOR_TEST_DATABASE names, which several servers may serve together.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstdio>
#include <mutex>
#include <optional>
#include <thread>

#include "cluster_database.h"
#include "ledger.h"
#include "server_process.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

// So many of the station's saves keep their number, every tenth gives it back.
void giveNumbers(Workstation& station, int numbers)
{
  for (int transaction = 1; int(station.made().size()) < numbers; ++transaction) {
    if (transaction % 10 == 0) {
      station.saveInVain();
    } else {
      station.save(true);
    }
  }
}

QStringList run(const QString& program, const QString& database, const QString& log, int servers, int clients, int numbers)
{
  if (QProcess::execute(program, {QStringLiteral("init"), QStringLiteral("--db"), database}) != 0) {
    return {QStringLiteral("no database")};
  }
  const Ledger ledger(database);
  std::vector<std::unique_ptr<ServerProcess>> processes;
  for (int i = 0; i < servers; ++i) {
    processes.push_back(std::make_unique<ServerProcess>());
    processes.back()->program = program;
    processes.back()->database = database;
    processes.back()->log = log;
    if (!processes.back()->start()) {
      return {QStringLiteral("the server does not start")};
    }
  }
  Workstations stations;
  for (int i = 0; i < clients; ++i) {
    stations.push_back(std::make_unique<Workstation>(i, processes[size_t(i % servers)]->port));
    stations.back()->connect();
    stations.back()->chooseInvoice(0);
    stations.back()->disconnect();
  }
  QStringList faults;
  std::mutex faultsLock;
  std::vector<std::thread> threads;
  QElapsedTimer timer;
  timer.start();
  for (const auto& station : stations) {
    threads.emplace_back([&] {
      try {
        station->connect();
        giveNumbers(*station, numbers / clients);
      } catch (const DataError& error) {
        const std::lock_guard lock(faultsLock);
        faults.append(QStringLiteral("client %1: %2").arg(station->index()).arg(error.message()));
      }
      station->disconnect();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const double seconds = timer.elapsed() / 1e3;
  faults += ledger.check(stations);
  int inVain = 0;
  double slowest = 0;
  for (const auto& station : stations) {
    inVain += station->inVain();
    slowest = qMax(slowest, station->slowestMs());
  }
  std::printf("%d clients on %d server(s): %d numbers given, %d transactions rolled back, %.1f s; slowest single call %.1f ms\n",
              clients, servers, ledger.numbered(), inVain, seconds, slowest);
  for (const auto& process : processes) {
    process->kill();
  }
  return faults;
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  for (const char* name : {"server", "numbers", "clients", "servers"}) {
    parser.addOption({QString::fromLatin1(name), QString(), QStringLiteral("VALUE")});
  }
  parser.addOption(QCommandLineOption(QStringLiteral("postgres")));
  parser.process(application);
  const auto number = [&](const char* name, int usual) {
    const QString given = parser.value(QString::fromLatin1(name));
    return given.isEmpty() ? usual : given.toInt();
  };
  QTemporaryDir folder;
  QString database = folder.filePath(QStringLiteral("company.db"));
  std::optional<ClusterDatabase> cluster;
  if (parser.isSet(QStringLiteral("postgres"))) {
    database = cluster.emplace().uri();
  }
  const QStringList faults = run(parser.value(QStringLiteral("server")), database, folder.filePath(QStringLiteral("log")),
                                 number("servers", 1), number("clients", 16), number("numbers", 16000));
  for (const QString& fault : faults) {
    std::printf("FAULT %s\n", qPrintable(fault));
  }
  return faults.isEmpty() ? 0 : 1;
}
