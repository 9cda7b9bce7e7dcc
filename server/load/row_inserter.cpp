#include "server/load/row_inserter.h"

namespace kalvor::server {

RowInserter::RowInserter(Connection& connection, const QString& table, const QStringList& columns)
    : columns_(columns.size())
{
  const QString marks = QStringList(columns.size(), QStringLiteral("?")).join(QStringLiteral(", "));
  statement_ = connection.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
      .arg(table, columns.join(QStringLiteral(", ")), marks));
}

void RowInserter::insert(const Variant* values, qsizetype count)
{
  Q_ASSERT(count == columns_);
  for (qsizetype i = 0; i < count; ++i) {
    statement_->bind(int(i), values[i]);
  }
  statement_->step();
  statement_->reset();
}

}  // namespace kalvor::server
