// The structure of a stored query: what it selects under which names, and from which tables.
#pragma once

#include "server/sql/sql_tokens.h"

namespace kalvor::server {

struct SelectItem {
  qsizetype begin = 0;   // tokens of the expression
  qsizetype end = 0;
  QString name;          // of the result column
  QString type;          // declared in the alias "Name:TYPE"; may be empty
  QString table;         // a plain column: its qualifier (may be empty) and its name
  QString column;        // empty: an expression
  bool allColumns = false;  // Table.*
};

struct SelectTable {
  QString name;
  QString alias;         // the name when there is none
};

struct SelectParts {
  QList<SqlToken> tokens;
  QList<SelectItem> items;
  QList<SelectTable> tables;   // without those of inner selects
  qsizetype fromBegin = 0;     // tokens after FROM up to WHERE
  qsizetype fromEnd = 0;
  qsizetype whereBegin = 0;    // tokens after WHERE; empty range: none
  qsizetype whereEnd = 0;
  qsizetype restBegin = 0;     // tokens of GROUP BY ... or UNION ... up to the end; may be none
  bool distinct = false;
  bool unioned = false;
  bool nested() const { return distinct || restBegin < tokens.size(); }  // conditions on rows go around it
};

// Nothing when it is no SELECT ... FROM ..., or an item that is no plain column has no AS name; reason says why.
KALVOR_SERVER std::optional<SelectParts> parseSelect(const QString& sql, QString* reason = nullptr);

}  // namespace kalvor::server
