// One open SQLite database with its prepared statements. Known inside server/store only.
#pragma once

#include <sqlite3.h>

#include <QHash>
#include <QSet>
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
  sqlite3_stmt* take(const QByteArray& sql, StatementUse use);  // prepared, reset, bound to nothing
  void giveBack(const QByteArray& sql, StatementUse use, sqlite3_stmt* statement);
  // One step; what SQLite compiles anew meanwhile is under the statement's own rules.
  int step(sqlite3_stmt* statement, StatementUse use);
  void allowReadingOnly();  // from now on, whatever the use
  [[noreturn]] void fail(int code, const QByteArray& sql) const;

 private:
  // What the authorizer goes by. Replacing the authorizer would make SQLite compile every statement anew.
  struct Rules {
    bool readOnly = false;
    StatementUse use = StatementUse::Own;
    bool denied = false;      // something of the statement being compiled
    QSet<QByteArray> tables;  // that it names
  };
  static int authorize(void* rules, int action, const char* first, const char* second, const char*, const char*);
  static int authorizeAsked(Rules& rules, int action, const char* first, const char* second);
  sqlite3_stmt* compile(const QByteArray& sql, StatementUse use);
  bool allKnown(const QSet<QByteArray>& tables);

  sqlite3* database_ = nullptr;
  Rules rules_;
  QSet<QByteArray> knownTables_;  // in lower case
  QHash<QByteArray, sqlite3_stmt*> idle_;
  QList<QByteArray> order_;  // of idle_, the longest unused first
};

// The collation KALVOR, like(), lower() and upper().
void registerTextRules(sqlite3* database);

}  // namespace kalvor::server
