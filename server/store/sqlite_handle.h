// One open SQLite database with its prepared statements. Known inside server/store only.
#pragma once

#include <sqlite3.h>

#include <QHash>
#include <QStringList>

#include "server/store/connection.h"

namespace kalvor::server {

class SqliteHandle {
 public:
  explicit SqliteHandle(const QString& fileName);
  ~SqliteHandle();
  SqliteHandle(const SqliteHandle&) = delete;
  SqliteHandle& operator=(const SqliteHandle&) = delete;

  sqlite3* database() const { return database_; }
  void run(const char* sql);                 // without parameters and rows
  sqlite3_stmt* take(const QByteArray& sql); // prepared, reset, bound to nothing
  void giveBack(const QByteArray& sql, sqlite3_stmt* statement);
  [[noreturn]] void fail(int code, const QByteArray& sql) const;

 private:
  sqlite3* database_ = nullptr;
  QHash<QByteArray, sqlite3_stmt*> idle_;
  QList<QByteArray> order_;  // of idle_, the longest unused first
};

// The collation KALVOR, like(), lower() and upper().
void registerTextRules(sqlite3* database);
// From now on statements may only read.
void allowReadingOnly(sqlite3* database);

}  // namespace kalvor::server
