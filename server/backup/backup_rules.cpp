#include "server/backup/backup_rules.h"

#include <QTextStream>
#include <algorithm>

#include "server/backup/backup_file.h"
#include "server/integrity/consistency.h"
#include "server/store/introspection.h"
#include "server/store/migrations.h"

namespace kalvor::server {

int newestVersion()
{
  int newest = 0;
  for (const Migration& migration : embeddedMigrations()) {
    newest = std::max(newest, migration.number);
  }
  return newest;
}

void requireKnownVersion(int version, const QString& shown)
{
  if (version > newestVersion()) {
    throw BackupError(QStringLiteral("%1 е от версия %2, а програмата познава версии до %3")
                          .arg(shown).arg(version).arg(newestVersion()));
  }
}

int knownVersion(Connection& connection, const QString& shown)
{
  Variant last;
  try {
    const Transaction step(connection, false);
    last = connection.value(QStringLiteral("SELECT MAX(Number) FROM srv_Migration"));
  } catch (const StoreError& error) {
    if (error.kind() == StoreError::Kind::Unreachable) {
      throw;
    }
  }
  if (isNull(last)) {
    throw BackupError(QStringLiteral("%1 не е база данни на фирма или е повредена").arg(shown));
  }
  requireKnownVersion(last.toInt(), shown);
  return last.toInt();
}

void requireSound(Connection& connection, int version, Violations violations, const QString& shown)
{
  QTextStream errors(stderr);
  if (version < newestVersion()) {
    const QStringList faults = connection.faults();
    if (!faults.isEmpty()) {
      throw BackupError(QStringLiteral("%1 е повредена: %2").arg(shown, faults.first()));
    }
    errors << QStringLiteral("%1 е от по-стара версия (%2): съответствието на записите не е проверено").arg(shown).arg(version)
           << Qt::endl;
    return;
  }
  bool damaged = false;
  const bool passed = checkConsistency(connection, [&](const CheckOutcome& outcome) {
    if (!outcome.passed()) {
      errors << outcomeLine(outcome) << Qt::endl;
      damaged = damaged || outcome.name == u"storage";
    }
  });
  if (damaged) {
    throw BackupError(QStringLiteral("%1 е повредена").arg(shown));
  }
  if (!passed && violations == Violations::Refuse) {
    throw BackupError(QStringLiteral("%1: записи си противоречат; с --despite-violations се приема въпреки това").arg(shown));
  }
}

}  // namespace kalvor::server
