// Clients save while something is killed at random moments; then it is started again and the ledger is checked: every
// acknowledged save is there, none half, none twice after the repetition under its request id, and the numbers of every
// series without a gap.
//
//   --kills N                 the server's process
//   --cuts N --recorder FILE  the power: what was not synchronized is on the disk in parts only
//   --crashes N --crash FILE  PostgreSQL under the server that goes on; FILE immediate|kill crashes and starts it again
//
// --postgres kills the server on a database of the cluster that KALVOR_TEST_DATABASE names. --lying-disk: the disk
// acknowledges what it has not done; the run succeeds when that is found out.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cstdio>
#include <mutex>
#include <random>
#include <thread>

#include "cluster_database.h"
#include "disk_model.h"
#include "ledger.h"
#include "server_process.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

struct Settings {
  QString server, recorder, crash, database;
  int clients = 16;
  int rounds = 0;
  bool liesOfDisk = false;
  unsigned seed = 1;
};

class Trial {
 public:
  explicit Trial(const Settings& settings) : settings_(settings), random_(settings.seed)
  {
    server_.program = settings.server;
    server_.log = folder_.filePath(QStringLiteral("log"));
    server_.database = settings.database;
    if (settings.database.isEmpty()) {
      QDir().mkpath(disk());
      server_.database = disk() + QStringLiteral("/company.db");
    }
  }
  bool run();

 private:
  QString disk() const { return folder_.filePath(QStringLiteral("disk")); }
  QString record() const { return folder_.filePath(QStringLiteral("record")); }
  bool cuts() const { return !settings_.recorder.isEmpty(); }
  void prepare();
  void record(bool on);
  void start();
  void saveUntilDisaster(bool last);
  void disaster();
  void crashDatabase();
  void cutPower();
  void checkRecord(const DiskModel::Files& recorded);
  void fault(const QString& text)
  {
    const std::lock_guard lock(faultsLock_);
    faults_.append(QStringLiteral("round %1: %2").arg(round_).arg(text));
  }
  bool report() const;

  const Settings& settings_;
  std::mt19937 random_;
  QTemporaryDir folder_;
  ServerProcess server_;
  std::unique_ptr<DiskModel> model_;
  std::unique_ptr<Ledger> ledger_;
  Workstations stations_;
  int round_ = 0;
  std::mutex faultsLock_;
  QStringList faults_;
  qint64 unsynchronized_ = 0;
  int cutsAtStart_ = 0;
  int checkpointsCut_ = 0;
};

void Trial::start()
{
  if (!server_.start()) {
    throw DataError(QStringLiteral("the server does not start"));
  }
}

// The database as everybody finds it, safely on the disk; each client's own invoice.
void Trial::prepare()
{
  if (QProcess::execute(settings_.server, {QStringLiteral("init"), QStringLiteral("--db"), server_.database}) != 0) {
    throw DataError(QStringLiteral("no database"));
  }
  ledger_ = std::make_unique<Ledger>(server_.database);
  if (cuts()) {
    server_.environment.insert(QStringLiteral("LD_PRELOAD"), settings_.recorder);
    server_.environment.insert(QStringLiteral("KALVOR_CUT_FOLDER"), disk());
    server_.environment.insert(QStringLiteral("KALVOR_CUT_RECORD"), record());
    if (settings_.liesOfDisk) {
      server_.environment.insert(QStringLiteral("KALVOR_CUT_LIES"), QStringLiteral("1"));
    }
    model_ = std::make_unique<DiskModel>(disk());
  }
  start();
  for (int i = 0; i < settings_.clients; ++i) {
    stations_.push_back(std::make_unique<Workstation>(i, server_.port));
    stations_.back()->sessionsMayBeLost = cuts() || !settings_.crash.isEmpty();
    stations_.back()->connect();
    stations_.back()->chooseInvoice(i);
    stations_.back()->disconnect();
  }
}

void Trial::saveUntilDisaster(bool last)
{
  std::atomic<bool> end = last;
  std::vector<std::thread> threads;
  for (const auto& station : stations_) {
    threads.emplace_back([&] {
      try {
        station->saveUntil(end);
      } catch (const DataError& error) {
        fault(QStringLiteral("client %1: %2").arg(station->index()).arg(error.message()));
      }
      station->disconnect();
    });
  }
  if (!last) {
    // Other processes need time to come back after a crash of the database.
    const unsigned usual = settings_.crash.isEmpty() ? 100 : 600;
    std::this_thread::sleep_for(std::chrono::milliseconds(usual + random_() % (6 * usual)));
    settings_.crash.isEmpty() ? server_.kill() : crashDatabase();
    end = true;
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void Trial::crashDatabase()
{
  const QString how = QLatin1StringView(round_ % 2 ? "kill" : "immediate");
  if (QProcess::execute(settings_.crash, {how}) != 0) {
    fault(QStringLiteral("PostgreSQL does not start again"));
  }
}

// The record must account for every byte of the folder but those of a write that the kill kept from being recorded.
void Trial::checkRecord(const DiskModel::Files& recorded)
{
  const DiskModel::Files live = DiskModel::read(disk());
  if (live.keys() != recorded.keys()) {
    return fault(QStringLiteral("the recorder missed a file"));
  }
  int differing = 0;
  for (auto file = live.cbegin(); file != live.cend(); ++file) {
    const QByteArray& left = file.value();
    const QByteArray& right = recorded[file.key()];
    const qsizetype shorter = qMin(left.size(), right.size());
    const auto first = std::mismatch(left.begin(), left.begin() + shorter, right.begin()).first - left.begin();
    if (first == shorter && left.size() == right.size()) {
      continue;
    }
    qsizetype end = qMax(left.size(), right.size());
    while (left.size() == right.size() && left[end - 1] == right[end - 1]) {
      --end;
    }
    if (++differing > 1 || end - first > 8192) {
      fault(QStringLiteral("the recorder missed %1 bytes of %2").arg(end - first).arg(file.key()));
    }
  }
}

void Trial::cutPower()
{
  model_->replay(record());
  checkRecord(model_->afterCut(DiskModel::Kept::Everything, random_));
  unsynchronized_ += model_->unsynchronized();
  checkpointsCut_ += model_->unsynchronized(QStringLiteral("company.db")) > 0;
  const auto kept = DiskModel::Kept(random_() % DiskModel::waysToKeep);
  DiskModel::write(disk(), model_->afterCut(kept, random_));
  QFile::remove(record());
  model_ = std::make_unique<DiskModel>(disk());
}

// What follows the killing, until the server listens again.
void Trial::disaster()
{
  if (!settings_.crash.isEmpty()) {
    return;
  }
  if (cuts()) {
    cutPower();
    // Now and then the power goes again while the server starts and recovers.
    while (random_() % 5 == 0) {
      ++cutsAtStart_;
      server_.launch();
      server_.process.waitForReadyRead(int(random_() % 200));
      server_.kill();
      if (QFile::exists(record())) {
        cutPower();
      }
    }
  }
  start();
}

bool Trial::run()
{
  try {
    prepare();
    for (round_ = 1; round_ <= settings_.rounds && faults_.isEmpty(); ++round_) {
      saveUntilDisaster(false);
      disaster();
      for (const QString& text : ledger_->check(stations_)) {
        fault(text);
      }
    }
    if (faults_.isEmpty()) {
      saveUntilDisaster(true);
      for (const QString& text : ledger_->check(stations_)) {
        fault(text);
      }
    }
  } catch (const DataError& error) {
    fault(error.message());
  } catch (const std::exception& error) {
    fault(QString::fromUtf8(error.what()));
  }
  server_.kill();
  return report();
}

bool Trial::report() const
{
  int acknowledged = 0;
  int cutOff = 0;
  double slowest = 0;
  for (const auto& station : stations_) {
    acknowledged += station->acknowledged();
    cutOff += station->cutOff();
    slowest = qMax(slowest, station->slowestMs());
  }
  const char* what = cuts() ? "power cuts" : settings_.crash.isEmpty() ? "kills of the server" : "crashes of PostgreSQL";
  std::printf("%d %s under %d clients: %d saves acknowledged, %d new invoices numbered, %d calls failed and were repeated\n",
              round_ - 1, what, settings_.clients, acknowledged, ledger_ ? ledger_->numbered() : 0, cutOff);
  if (cuts()) {
    std::printf("%d further cuts while starting, %d cuts during a checkpoint; %lld changes were not synchronized when the power went\n",
                cutsAtStart_, checkpointsCut_, static_cast<long long>(unsynchronized_));
  }
  for (const QString& text : faults_.first(qMin<qsizetype>(10, faults_.size()))) {
    std::printf("%s %s\n", settings_.liesOfDisk ? "found:" : "FAULT", qPrintable(text));
  }
  return faults_.isEmpty() && acknowledged > 0;
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  for (const char* name : {"server", "kills", "cuts", "recorder", "crashes", "crash", "clients", "seed"}) {
    parser.addOption({QString::fromLatin1(name), QString(), QStringLiteral("VALUE")});
  }
  parser.addOption(QCommandLineOption(QStringLiteral("postgres")));
  parser.addOption(QCommandLineOption(QStringLiteral("lying-disk")));
  parser.process(application);
  const auto number = [&](const char* name, int usual) {
    const QString given = parser.value(QString::fromLatin1(name));
    return given.isEmpty() ? usual : given.toInt();
  };
  Settings settings;
  settings.server = parser.value(QStringLiteral("server"));
  settings.recorder = parser.value(QStringLiteral("recorder"));
  settings.crash = parser.value(QStringLiteral("crash"));
  settings.clients = number("clients", settings.clients);
  settings.rounds = number("kills", 0) + number("cuts", 0) + number("crashes", 0);
  settings.liesOfDisk = parser.isSet(QStringLiteral("lying-disk"));
  settings.seed = unsigned(number("seed", 1));
  const bool found = [&] {
    if (!parser.isSet(QStringLiteral("postgres")) && settings.crash.isEmpty()) {
      return Trial(settings).run();
    }
    const ClusterDatabase database;
    settings.database = database.uri();
    return Trial(settings).run();
  }();
  return found == settings.liesOfDisk ? 1 : 0;
}
