// A backup of either kind of database. All throw BackupError or StoreError.
#pragma once

#include "server/backup/backup_file.h"
#include "server/backup/backup_rules.h"

namespace kalvor::server {

// Writes the part and checks what it holds; the version of the tables. The seal is the caller's.
int backUpSqlite(const QString& database, const PartFile& part, Violations violations);
int backUpPostgres(const QString& uri, const PartFile& part, Violations violations);

// A backup whose kind and version are known to fit.
void restoreSqlite(const QString& backup, const QString& database, bool force, Violations violations);
// The database must be empty. Nothing or all of it is there in the end; then it is checked.
void restorePostgres(const QString& backup, const QString& uri, Violations violations);

}  // namespace kalvor::server
