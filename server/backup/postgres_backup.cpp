#include "server/backup/copies.h"
#include "server/backup/postgres_tools.h"
#include "server/store/database.h"
#include "server/store/introspection.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

// Who is connected is no part of a backup.
constexpr const char* sessionTables[] = {"srv_session", "srv_provider", "srv_documentlock", "srv_loginfailure", "srv_loginfrom"};

}  // namespace

int backUpPostgres(const QString& uri, const PartFile& part, Violations violations)
{
  const QString shown = shownDatabase(uri);
  const auto connection = openDatabase(uri, ConnectionUse::Read);
  // One state for the checks and for the dump.
  const Transaction snapshot(*connection, false);
  connection->execute(QStringLiteral("SELECT set_config('idle_in_transaction_session_timeout', '0', true)"));
  const int version = knownVersion(*connection, shown);
  const QString id = connection->value(QStringLiteral("SELECT pg_export_snapshot()")).toString();
  requireSound(*connection, version, violations, shown);
  QStringList arguments{QStringLiteral("--format=custom"), QStringLiteral("--snapshot=") + id,
                        QStringLiteral("--file=") + part.path()};
  for (const char* table : sessionTables) {
    arguments.append(QStringLiteral("--exclude-table-data=") + QLatin1StringView(table));
  }
  runPostgresTool(QStringLiteral("pg_dump"), arguments, uri);
  // The contents alone say little: the whole archive is read.
  runPostgresTool(QStringLiteral("pg_restore"), {QStringLiteral("--list"), part.path()});
  runPostgresTool(QStringLiteral("pg_restore"), {QStringLiteral("--file=/dev/null"), part.path()});
  return version;
}

void restorePostgres(const QString& backup, const QString& uri, Violations violations)
{
  const QString shown = shownDatabase(uri);
  verifyBackup(backup);
  runPostgresTool(QStringLiteral("pg_restore"), {QStringLiteral("--list"), backup});
  if (!readTables(*openDatabase(uri, ConnectionUse::Read)).isEmpty()) {
    throw BackupError(QStringLiteral("%1 не е празна; архивът се връща само в празна база данни").arg(shown));
  }
  runPostgresTool(QStringLiteral("pg_restore"),
                  {QStringLiteral("--single-transaction"), QStringLiteral("--exit-on-error"), QStringLiteral("--no-owner"),
                   QStringLiteral("--no-privileges"), backup},
                  uri);
  const auto connection = openDatabase(uri, ConnectionUse::Write);
  migrate(*connection);
  const Transaction snapshot(*connection, false);
  try {
    requireSound(*connection, newestVersion(), violations, shown);
  } catch (const BackupError& error) {
    throw BackupError(QStringLiteral("%1\nАрхивът е върнат, но не бива да се ползва така.").arg(QString::fromUtf8(error.what())));
  }
}

}  // namespace kalvor::server
