#include "server/store/connection.h"

#include <cmath>

namespace kalvor::server {

StoreError::StoreError(Kind kind, const QString& message, Rule rule, QStringList columns)
    : std::runtime_error(message.toStdString()), kind_(kind), rule_(rule), columns_(std::move(columns))
{
}

namespace {

std::shared_ptr<Statement> boundStatement(Connection& connection, const QString& sql, const VariantArray& values)
{
  auto statement = connection.prepare(sql);
  for (int i = 0; i < values.size(); ++i) {
    statement->bind(i, values.at(i));
  }
  return statement;
}

}  // namespace

qint64 Connection::execute(const QString& sql, const VariantArray& values)
{
  auto statement = boundStatement(*this, sql, values);
  while (statement->step()) {
  }
  return changedRows();
}

RecordSet Connection::query(const QString& sql, const VariantArray& values)
{
  auto statement = boundStatement(*this, sql, values);
  const bool any = statement->step();
  QList<FieldDef> fields;
  for (int i = 0; i < statement->columnCount(); ++i) {
    fields.append(statement->column(i));
  }
  RecordSet records(fields);
  for (bool more = any; more; more = statement->step()) {
    statement->appendRowTo(records);
  }
  return records;
}

Variant Connection::value(const QString& sql, const VariantArray& values)
{
  auto statement = boundStatement(*this, sql, values);
  return statement->step() ? statement->value(0) : Variant();
}

Transaction::Transaction(Connection& connection, bool writing) : connection_(connection)
{
  connection_.begin(writing);
}

Transaction::~Transaction()
{
  if (open_) {
    connection_.rollback();
  }
}

void Transaction::commit()
{
  connection_.commit();
  open_ = false;
}

qint64 scaled(double amount)
{
  const double millionths = std::round(amount * double(amountScale));
  if (!(std::abs(millionths) < 9.2e18)) {
    throw StoreError(StoreError::Kind::Constraint, QStringLiteral("amount out of range"));
  }
  return qint64(millionths);
}

}  // namespace kalvor::server
