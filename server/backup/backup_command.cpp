#include "server/backup/backup_command.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextStream>

#include "server/backup/copies.h"
#include "server/configuration.h"
#include "server/load/command_line.h"
#include "server/store/database.h"

namespace kalvor::server {

namespace {

constexpr const char* backupUsage =
    "kalvor-server backup ФАЙЛ [--db ФАЙЛ|URI] [--config ФАЙЛ] [--despite-violations]\n"
    "Проверено копие на базата данни, докато потребителите работят. Файлът е цял или го няма.";
constexpr const char* restoreUsage =
    "kalvor-server restore ФАЙЛ --db ФАЙЛ|URI [--force] [--despite-violations]\n"
    "Връща архив в нова база данни; --force заменя файла, който вече е там и никой не ползва.";

Violations violationsOf(const CommandArguments& arguments)
{
  return arguments.has(QStringLiteral("--despite-violations")) ? Violations::Accept : Violations::Refuse;
}

QString onlyFile(const CommandArguments& arguments)
{
  if (arguments.positional.size() != 1) {
    throw UsageError(QStringLiteral("нужен е един файл на архив"));
  }
  return arguments.positional.first();
}

void requireFileDatabase(const QString& database)
{
  if (database == u":memory:" || database.startsWith(u"file:")) {
    throw UsageError(QStringLiteral("базата данни трябва да е файл или URI на PostgreSQL"));
  }
}

void tell(const QString& what, const QElapsedTimer& timer)
{
  QTextStream(stdout) << what << QStringLiteral(" за %1 с").arg(double(timer.elapsed()) / 1000, 0, 'f', 2) << Qt::endl;
}

void backUp(const QStringList& arguments)
{
  const CommandArguments parsed =
      parseArguments(arguments, {{QStringLiteral("--db")}, {QStringLiteral("--config")},
                                 {QStringLiteral("--despite-violations"), OptionKind::Flag}});
  const QString file = onlyFile(parsed);
  const QString database = databaseOf(parsed);
  requireFileDatabase(database);
  if (!mayExist(database)) {
    throw BackupError(QStringLiteral("няма база данни %1").arg(database));
  }
  // A mistake in the order of names must not cost a file that is no backup.
  if (QFileInfo::exists(file) && !readSeal(file)) {
    throw BackupError(QStringLiteral("%1 съществува и не е архив; няма да бъде заменен").arg(file));
  }
  QElapsedTimer timer;
  timer.start();
  const bool postgres = isPostgresUri(database);
  PartFile part(file);
  const int version = postgres ? backUpPostgres(database, part, violationsOf(parsed))
                               : backUpSqlite(database, part, violationsOf(parsed));
  sealBackup(part.path(), postgres ? BackupKind::PostgreSql : BackupKind::Sqlite, version);
  part.finish(PartFile::Existing::Replace);
  tell(QStringLiteral("%1: архив на %2, %3 байта,").arg(file, shownDatabase(database)).arg(QFileInfo(file).size()), timer);
}

void restore(const QStringList& arguments)
{
  const CommandArguments parsed =
      parseArguments(arguments, {{QStringLiteral("--db")}, {QStringLiteral("--force"), OptionKind::Flag},
                                 {QStringLiteral("--despite-violations"), OptionKind::Flag}});
  const QString file = onlyFile(parsed);
  if (!parsed.has(QStringLiteral("--db"))) {
    throw UsageError(QStringLiteral("--db казва в коя база данни се връща архивът"));
  }
  const QString database = parsed.value(QStringLiteral("--db"));
  requireFileDatabase(database);
  QElapsedTimer timer;
  timer.start();
  const std::optional<BackupSeal> seal = readSeal(file);
  if (!seal) {
    verifyBackup(file);  // says why
  }
  const bool postgres = isPostgresUri(database);
  if (seal->kind != (postgres ? BackupKind::PostgreSql : BackupKind::Sqlite)) {
    throw BackupError(QStringLiteral("%1 е архив на друг вид база данни").arg(file));
  }
  requireKnownVersion(seal->version, file);
  postgres ? restorePostgres(file, database, violationsOf(parsed))
           : restoreSqlite(file, database, parsed.has(QStringLiteral("--force")), violationsOf(parsed));
  tell(QStringLiteral("%1: върнат архив %2").arg(shownDatabase(database), file), timer);
}

}  // namespace

int runBackup(const QStringList& arguments)
{
  return exitCodeOf(backupUsage, [&] { backUp(arguments); });
}

int runRestore(const QStringList& arguments)
{
  return exitCodeOf(restoreUsage, [&] { restore(arguments); });
}

}  // namespace kalvor::server
