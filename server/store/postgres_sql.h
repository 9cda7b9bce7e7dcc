// The shared SQL in PostgreSQL's words. Known inside server/store only.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

struct PostgresSql {
  QByteArray text;
  int parameters = 0;
  QHash<QString, QString> aliases;  // lower case -> as written after AS
  bool reads = false;               // a SELECT, with what stands WITH it: run again it does no harm
};

// One statement: ? becomes $1 ..., names fold to lower case, LIKE becomes ILIKE, nulls come first in every order,
// casts and the collation KALVOR turn to the types behind them.
KALVOR_SERVER PostgresSql postgresSql(const QString& sql);

// A statement that defines something (or any other without parameters), as the statements that do it: types become
// PostgreSQL's, the spelling of names and the declared types are kept as comments, a trigger gets its function.
KALVOR_SERVER QStringList postgresDefinition(const QString& statement);

// The comment that keeps a column's name and declared type: "Comp_Id VARCHAR(10)".
struct ColumnComment {
  QString name;
  QString type;  // empty: none was kept
};
// Of a column called so in the database; a comment of somebody else's says nothing.
ColumnComment columnComment(const QString& column, const QString& comment);

}  // namespace kalvor::server
