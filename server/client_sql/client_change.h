// Statements that change rows, as they come in batches from a client: taken apart here, and made anew by the same
// writer that applies the changes of a form.
#pragma once

#include "data/variant.h"
#include "server/sql/sql_tokens.h"

namespace kalvor::server {

struct ClientChange {
  enum class Kind : quint8 { Insert, Update, Delete };
  Kind kind = Kind::Insert;
  QString table;
  QStringList columns;       // of Insert and Update
  QList<VariantArray> rows;  // values by the columns: texts, null for NULL; one row for Update, none for Delete
  FilterArray where;         // of Update and Delete, its fields "Column" or "Table.Column"; empty: every row
};

// INSERT INTO table (columns) VALUES (values){, (values)}; UPDATE table SET column = value{, column = value} [WHERE
// comparisons]; DELETE FROM table [WHERE comparisons]. Values are literals. The table may have "dbo." before it.
// Nothing for any other text.
KALVOR_SERVER std::optional<ClientChange> parseClientChange(const QString& sql);

// The statements of a batch, divided by semicolons or just by the next one's first word. Nothing when the text is no
// SQL of ours.
KALVOR_SERVER std::optional<QStringList> statementsOf(const QString& batch);

}  // namespace kalvor::server
