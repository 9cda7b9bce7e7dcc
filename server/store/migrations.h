// Brings a database to this program's version: numbered SQL files, each run once in a transaction.
#pragma once

#include "server/store/connection.h"

namespace kalvor::server {

struct Migration {
  int number = 0;
  QString name;
  QString sql;  // statements separated by ";"
};

// The files server/schema/NNN_name.sql inside the program, by number.
KALVOR_SERVER QList<Migration> embeddedMigrations();

// Runs those that the database has not had. Returns how many ran. Throws StoreError; the failed one leaves nothing
// behind. A database of a newer program is refused.
KALVOR_SERVER int migrate(Connection& connection, const QList<Migration>& migrations = embeddedMigrations());

// The parts of a script between ";" outside quotes and comments, comments removed.
KALVOR_SERVER QStringList splitScript(const QString& script);

// A CREATE TABLE or ALTER TABLE ... ADD for SQLite: text columns get the collation KALVOR, dates and times are
// kept as text. Other statements are unchanged.
KALVOR_SERVER QString forSqlite(const QString& statement);

}  // namespace kalvor::server
