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

// Runs those that the database has not had; the record table keeps which it had. Several programs may do so at once.
// Returns how many ran. Throws StoreError; the failed one leaves nothing behind. A database of a newer program is refused.
KALVOR_SERVER int migrate(Connection& connection, const QList<Migration>& migrations = embeddedMigrations(),
                          const QString& record = QStringLiteral("srv_Migration"));

// Runs the statements of a script one after another, definitions and others; none has parameters.
KALVOR_SERVER void runScript(Connection& connection, const QString& script);

}  // namespace kalvor::server
