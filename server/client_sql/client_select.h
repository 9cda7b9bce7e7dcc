// A SELECT over known tables that a client asks for, as text or as a table with its columns: never forwarded, but
// taken apart, checked against the catalogue and made anew with bound values, rights and company added.
#pragma once

#include "server/rights/access.h"
#include "server/sql/fragment.h"

namespace kalvor::server {

struct SelectColumn {
  QString table;    // may be empty: the one table that has the column
  QString column;
  QString name;     // after AS: read, and left out of the statement
};

struct ColumnPair {
  SelectColumn left;
  SelectColumn right;
};

struct SelectJoin {
  QString table;
  bool left = false;        // LEFT JOIN, else INNER JOIN
  QList<ColumnPair> equal;  // ON a = b AND ...
};

// More of these no statement may have.
constexpr qsizetype maxSelectColumns = 500;
constexpr qsizetype maxSelectJoins = 16;
constexpr qsizetype maxJoinEqualities = 16;

struct ClientSelect {
  QList<SelectColumn> columns;
  QString table;
  QList<SelectJoin> joins;
  FilterArray where;        // of the text
};

// SELECT columns FROM table {INNER|LEFT [OUTER] JOIN table ON equalities} [WHERE comparisons with literals]. Nothing
// for any other text.
KALVOR_SERVER std::optional<ClientSelect> parseClientSelect(const QString& sql);

// "A, T.B ,C" of one table. Nothing when a part is no plain name.
KALVOR_SERVER std::optional<ClientSelect> tableSelect(const QString& table, const QString& columns);

// The statement with the filter's conditions. Throws RpcError: Refused for an unknown table, column or value,
// Forbidden for a table that the user may not read.
KALVOR_SERVER Fragment clientSelectStatement(const Access& access, const ClientSelect& select, const FilterArray& filter);

}  // namespace kalvor::server
