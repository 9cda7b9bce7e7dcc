#include "server/store/sqlite_copy.h"

#include "server/store/sqlite_handle.h"

namespace kalvor::server {

void copySqlite(const QString& from, const QString& to)
{
  const SqliteHandle source(from);
  SqliteHandle target(to);
  sqlite3_backup* const backup = sqlite3_backup_init(target.database(), "main", source.database(), "main");
  if (!backup) {
    target.fail(sqlite3_extended_errcode(target.database()), "backup");
  }
  // In one step, so that it is one state; readers of a write-ahead log hold up nobody.
  const int code = sqlite3_backup_step(backup, -1);
  sqlite3_backup_finish(backup);
  if (code != SQLITE_DONE) {
    // The message of the side that failed.
    const bool ofSource = sqlite3_errcode(source.database()) != SQLITE_OK;
    (ofSource ? source : target).fail(code, "backup");
  }
  target.run("PRAGMA journal_mode=DELETE");
}

bool foldSqlite(const QString& fileName)
{
  SqliteHandle handle(fileName);
  sqlite3_busy_timeout(handle.database(), 500);
  try {
    // Only the sole user of a database may leave its write-ahead log.
    handle.run("PRAGMA journal_mode=DELETE");
    handle.run("BEGIN EXCLUSIVE");
    handle.run("ROLLBACK");
    return true;
  } catch (const StoreError& error) {
    if (error.kind() == StoreError::Kind::Busy) {
      return false;
    }
    throw;
  }
}

}  // namespace kalvor::server
