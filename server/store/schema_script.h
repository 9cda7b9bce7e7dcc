// Scripts that define tables, cut into statements and columns. Types are those that connection.h names.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "layer_export.h"

namespace kalvor::server {

// The parts of a script between ";" outside quotes and comments, comments removed. A trigger is one part.
KALVOR_SERVER QStringList splitScript(const QString& script);

struct ColumnDefinition {
  QString lead;  // blanks and ADD COLUMN before it
  QString name;  // as written; empty: a table constraint, all of it in rest
  QString type;  // "VARCHAR(20)"
  QString rest;  // what follows the type
};

// A CREATE TABLE or ALTER TABLE ... ADD, cut up so that its parts joined are the statement again.
struct TableDefinition {
  QString table;  // its name
  bool added = false;  // ALTER TABLE
  QString head;   // up to the first column
  QList<ColumnDefinition> columns;
  QString tail;

  QString joined(QString (*column)(const ColumnDefinition&)) const;
};
std::optional<TableDefinition> tableDefinition(const QString& statement);

// The parts between commas outside brackets and quotes.
QStringList splitAtCommas(const QString& text);

// A statement for SQLite: text columns get the collation KALVOR, dates and times are kept as text. Statements that
// define no columns are unchanged.
KALVOR_SERVER QString forSqlite(const QString& statement);

}  // namespace kalvor::server
