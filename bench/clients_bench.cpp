// Many clients at once against as many connections to the bare database doing the same statements: lists and saves a
// second, the server's memory with 100 sessions. Clients, server and database share the machine. On SQLite, and on
// PostgreSQL where KALVOR_TEST_DATABASE names a cluster's databases.
//
//   clients_bench [--invoices N] [--seconds S]
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>

#include "bare_client.h"
#include "kill/cluster_database.h"
#include "kill/server_process.h"
#include "kill/workstation.h"

using namespace kalvor;
using namespace kalvor::bench;
using kalvor::testing::ServerProcess;
using kalvor::testing::Workstation;

namespace {

constexpr int sessions = 100;
constexpr int page = 32;
constexpr int savesOfClient = 40;
constexpr int rounds = 3;

constexpr const char* pageSql =
    "SELECT D_SaleInvoiceHeader.Id, DocumentNo, DocumentDate, Contragent_Id, N_Contragent.Code, N_Contragent.Name, TotalValue, "
    "VATValue, TotalVAT, D_SaleInvoiceHeader.Currency_Id, DueDate, DocStatus, D_SaleInvoiceHeader.C_User_Id "
    "FROM D_SaleInvoiceHeader LEFT JOIN N_Contragent ON N_Contragent.Id = D_SaleInvoiceHeader.Contragent_Id "
    "WHERE D_SaleInvoiceHeader.Comp_Id = '1' ORDER BY DocumentDate DESC NULLS LAST, DocumentNo DESC NULLS LAST, "
    "D_SaleInvoiceHeader.Id DESC NULLS LAST LIMIT 32";

// An invoice of two lines with a number of its series, and the kept answer, as one transaction.
void saveBarely(BareClient& client, const QByteArray& id, const QByteArray& series)
{
  client.run("BEGIN");
  client.run("SELECT Answer FROM srv_Request WHERE User_Id = 'SUPERVSR' AND Comp_Id = '1' AND Request_Id = $1", {id});
  client.run("INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, Series_Id, DocumentDate, Note, C_User_Id, C_Datetime) "
             "VALUES ($1, '1', $2, '20260601', $3, 'SUPERVSR', '20260601T101010')", {id, series, id});
  for (const char* number : {"1", "2"}) {
    client.run("INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No, Type) VALUES ($1, '1', $2, $3, 1)",
               {id.left(31) + number, id, number});
  }
  client.run("SELECT Series_Id, DocumentNo FROM D_SaleInvoiceHeader WHERE Id = $1", {id});
  client.run("UPDATE N_Series SET LastNo = LastNo + 1 WHERE Id = $1 AND Comp_Id = '1'", {series});
  client.run("SELECT LastNo, MaxNo, Prefix, Name FROM N_Series WHERE Id = $1 AND Comp_Id = '1'", {series});
  client.run("UPDATE D_SaleInvoiceHeader SET DocumentNo = $1 WHERE Id = $2", {id.left(20), id});
  client.run("INSERT INTO srv_Request (User_Id, Comp_Id, Request_Id, Operation, Answer, CreatedAt) "
             "VALUES ('SUPERVSR', '1', $1, 'UpdateClientData', '0', '20260601T101010')", {id});
  client.run("COMMIT");
}

using Step = std::function<bool(int client, int step)>;  // false: that client has done its part

// Steps a second of so many threads, which all begin together.
double rate(int clients, const Step& step)
{
  std::atomic<bool> go = false;
  std::atomic<qint64> steps = 0;
  std::mutex lock;
  QString failure;
  std::vector<std::thread> threads;
  for (int client = 0; client < clients; ++client) {
    threads.emplace_back([&, client] {
      while (!go) {
        std::this_thread::yield();
      }
      try {
        for (int i = 0; step(client, i); ++i) {
          ++steps;
        }
      } catch (const DataError& error) {
        const std::lock_guard guard(lock);
        failure = error.message();
      }
    });
  }
  QElapsedTimer timer;
  timer.start();
  go = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  if (!failure.isEmpty()) {
    throw DataError(failure);
  }
  return double(steps) * 1e9 / double(timer.nsecsElapsed());
}

double median(std::vector<double> values)
{
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void rates(const QString& what, double ours, const QString& against, double theirs)
{
  std::printf("%-34s %9.0f /s | %-38s %9.0f /s | ratio %6.2f\n", qPrintable(what), ours, qPrintable(against), theirs,
              theirs / ours);
}

double residentMb(qint64 processId)
{
  QFile status(QStringLiteral("/proc/%1/status").arg(processId));
  if (status.open(QIODevice::ReadOnly)) {
    for (const QByteArray& row : status.readAll().split('\n')) {
      if (row.startsWith("VmRSS:")) {
        return row.mid(6).trimmed().split(' ').first().toDouble() / 1024;
      }
    }
  }
  return 0;
}

class Comparison {
 public:
  Comparison(QString program, QString database, QString log, int invoices, double seconds)
      : database_(std::move(database)), seconds_(seconds)
  {
    server_.program = std::move(program);
    server_.database = database_;
    server_.log = std::move(log);
    if (QProcess::execute(server_.program, {QStringLiteral("init"), QStringLiteral("--db"), database_,
                                            QStringLiteral("--invoices"), QString::number(invoices),
                                            QStringLiteral("--lines"), QStringLiteral("2")}) != 0 ||
        !server_.start()) {
      throw DataError(QStringLiteral("the server does not start"));
    }
    if (server::isPostgresUri(database_)) {
      BareClient::open(database_)->run("ANALYZE");
    }
  }
  ~Comparison() { server_.kill(); }

  void run()
  {
    const double before = residentMb(server_.process.processId());
    for (int i = 0; i < sessions; ++i) {
      stations_.push_back(std::make_unique<Workstation>(i, server_.port));
    }
    // Everybody is at home in the thread that uses it; here all take turns.
    for (const auto& station : stations_) {
      station->connect();
      station->chooseInvoice(0);
      station->openList(page);
    }
    const double after = residentMb(server_.process.processId());
    std::printf("server memory: %.1f MB at its start, %.1f MB with %d sessions that opened a list\n", before, after, sessions);
    for (const auto& station : stations_) {
      station->disconnect();
    }
    for (const int clients : {1, 16, 100}) {
      compareLists(clients);
    }
    compareSaves();
    std::printf("server memory: %.1f MB after all\n", residentMb(server_.process.processId()));
  }

 private:
  void compareLists(int clients)
  {
    std::vector<double> ours, theirs;
    std::vector<std::unique_ptr<BareClient>> bare;
    for (int i = 0; i < clients; ++i) {
      bare.push_back(BareClient::open(database_));
    }
    // Connections are made and ended in the client's thread, within the time.
    for (int i = 0; i < rounds; ++i) {
      ours.push_back(timedRate(clients, [&](int client) { stations_[size_t(client)]->openList(page); }, true));
      theirs.push_back(timedRate(clients, [&](int client) { bare[size_t(client)]->run(pageSql); }, false));
    }
    rates(QStringLiteral("lists (32 records), %1 clients").arg(clients), median(ours),
          QStringLiteral("bare SQL page, %1 connections").arg(clients), median(theirs));
  }

  template <class Body>
  double timedRate(int clients, Body body, bool ofStations)
  {
    std::vector<QElapsedTimer> timers{size_t(clients)};
    return rate(clients, [&](int client, int step) {
      if (step == 0) {
        timers[size_t(client)].start();
        if (ofStations) {
          stations_[size_t(client)]->connect();
        }
      }
      if (timers[size_t(client)].elapsed() >= seconds_ * 1e3) {
        if (ofStations) {
          stations_[size_t(client)]->disconnect();
        }
        return false;
      }
      body(client);
      return true;
    });
  }

  void compareSaves()
  {
    constexpr int clients = 16;
    const QByteArray series = server::openDatabase(database_, server::ConnectionUse::Read)
        ->value(QStringLiteral("SELECT Series_Id FROM D_SaleInvoiceHeader WHERE Id = ?"), {stations_[0]->invoice()})
        .toString().toUtf8();
    std::vector<double> ours, theirs, alone;
    std::vector<std::unique_ptr<BareClient>> bare;
    for (int i = 0; i < clients; ++i) {
      bare.push_back(BareClient::open(database_));
    }
    for (int round = 0; round < rounds; ++round) {
      std::vector<std::vector<Workstation::Save>> prepared(clients);
      for (int i = 0; i < clients; ++i) {
        stations_[size_t(i)]->connect();
        for (int save = 0; save < savesOfClient; ++save) {
          prepared[size_t(i)].push_back(stations_[size_t(i)]->buildNew());
        }
        stations_[size_t(i)]->disconnect();
      }
      ours.push_back(rate(clients, [&](int client, int step) {
        Workstation& station = *stations_[size_t(client)];
        if (step == 0) {
          station.connect();
        }
        if (step == savesOfClient) {
          station.disconnect();
          return false;
        }
        station.save(std::move(prepared[size_t(client)][size_t(step)]));
        return true;
      }));
      const auto saveStep = [&](int client, int step) {
        if (step == savesOfClient) {
          return false;
        }
        const QByteArray number = QByteArray::number(++bareSaves_).rightJustified(20, '0');
        saveBarely(*bare[size_t(client)], "BARE" + number + "0000000X", series);
        return true;
      };
      theirs.push_back(rate(clients, saveStep));
      alone.push_back(rate(1, saveStep));
    }
    const QString what = QStringLiteral("saves, %1 clients").arg(clients);
    rates(what, median(ours), QStringLiteral("bare transactions, %1 connections").arg(clients), median(theirs));
    rates(what, median(ours), QStringLiteral("bare transactions, 1 connection"), median(alone));
  }

  ServerProcess server_;
  QString database_;
  double seconds_;
  std::vector<std::unique_ptr<Workstation>> stations_;
  std::atomic<qint64> bareSaves_ = 0;
};

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOptions({{QStringLiteral("invoices"), QString(), QStringLiteral("N"), QStringLiteral("20000")},
                     {QStringLiteral("seconds"), QString(), QStringLiteral("S"), QStringLiteral("2")}});
  parser.process(application);
  const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/kalvor-server");
  const int invoices = parser.value(QStringLiteral("invoices")).toInt();
  const double seconds = parser.value(QStringLiteral("seconds")).toDouble();
  try {
    const QTemporaryDir folder;
    const QString log = folder.filePath(QStringLiteral("log"));
    std::printf("SQLite, %d invoices\n", invoices);
    Comparison(program, folder.filePath(QStringLiteral("company.db")), log, invoices, seconds).run();
    if (qEnvironmentVariableIsEmpty("KALVOR_TEST_DATABASE")) {
      std::printf("PostgreSQL is not there: left out\n");
      return 0;
    }
    const kalvor::testing::ClusterDatabase cluster;
    std::printf("PostgreSQL, %d invoices\n", invoices);
    Comparison(program, cluster.uri(), log, invoices, seconds).run();
  } catch (const std::exception& error) {
    std::printf("FAILED %s\n", error.what());
    return 1;
  }
  return 0;
}
