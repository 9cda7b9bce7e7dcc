#include <fcntl.h>
#include <unistd.h>

#include "server/backup/copies.h"
#include "server/store/database.h"
#include "server/store/migrations.h"
#include "server/store/sqlite_copy.h"

namespace kalvor::server {

namespace {

// Whether another process has a database in use: everybody who uses a write-ahead log holds a lock on the file of
// its shared memory. For files that SQLite itself cannot open any more.
bool lockedByOthers(const QString& fileName)
{
  for (const QString& name : {fileName, fileName + QStringLiteral("-shm")}) {
    const int descriptor = open(QFile::encodeName(name).constData(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0) {
      continue;
    }
    struct flock lock{};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    const bool held = fcntl(descriptor, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(descriptor);
    if (held) {
      return true;
    }
  }
  return false;
}

// Nobody uses the old file, and nothing beside it belongs to it any more.
void takeOutOfUse(const QString& database)
{
  bool alone = true;
  if (QFile::exists(database)) {
    try {
      alone = foldSqlite(database);
    } catch (const StoreError&) {
      alone = !lockedByOthers(database);
    }
  }
  if (!alone) {
    throw BackupError(QStringLiteral("%1 се ползва; спрете сървъра").arg(database));
  }
  // A log of the old file would be played back into the new one. Sessions and locks are those of the old state.
  for (const char* ending : {"-wal", "-shm", "-journal", "-sessions", "-sessions-wal", "-sessions-shm"}) {
    const QString name = database + QLatin1StringView(ending);
    if (QFile::exists(name) && !QFile::remove(name)) {
      throw BackupError(QStringLiteral("%1 не може да бъде премахнат").arg(name));
    }
  }
}

}  // namespace

int backUpSqlite(const QString& database, const PartFile& part, Violations violations)
{
  copySqlite(database, part.path());
  const auto copy = openSqlite(part.path(), true);
  const int version = knownVersion(*copy, database);
  requireSound(*copy, version, violations, database);
  return version;
}

void restoreSqlite(const QString& backup, const QString& database, bool force, Violations violations)
{
  if (!force && QFile::exists(database)) {
    throw BackupError(QStringLiteral("%1 вече съществува; --force го заменя").arg(database));
  }
  makeFolderOf(database);
  PartFile part(database);
  QFile copy(part.path());
  if (!copy.open(QIODevice::WriteOnly)) {
    throw BackupError(QStringLiteral("%1: %2").arg(part.path(), copy.errorString()));
  }
  verifyBackup(backup, &copy);
  copy.close();
  const int version = knownVersion(*openSqlite(part.path(), true), backup);
  if (version < newestVersion()) {
    migrate(*openSqlite(part.path(), false));
    foldSqlite(part.path());
  }
  requireSound(*openSqlite(part.path(), true), newestVersion(), violations, backup);
  takeOutOfUse(database);
  part.finish(force ? PartFile::Existing::Replace : PartFile::Existing::Keep);
}

}  // namespace kalvor::server
