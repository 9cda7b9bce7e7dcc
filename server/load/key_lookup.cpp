#include "server/load/key_lookup.h"

namespace kalvor::server {

namespace {

std::shared_ptr<Statement> statementByKey(Connection& connection, const QString& table, const QString& keyColumn,
                                          const QString& columns, const QString& companyId)
{
  const QString company = companyId.isEmpty() ? QString() : QStringLiteral(" AND Comp_Id = ?");
  return connection.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?%4").arg(columns, table, keyColumn, company));
}

void bindKey(Statement& statement, const QString& key, const QString& companyId)
{
  statement.reset();
  statement.bind(0, key);
  if (!companyId.isEmpty()) {
    statement.bind(1, companyId);
  }
}

}  // namespace

KeyLookup::KeyLookup(Connection& connection, const QString& table, const QString& keyColumn, const QString& companyId)
    : statement_(statementByKey(connection, table, keyColumn, keyColumn + QStringLiteral(", Id"), companyId)),
      companyId_(companyId)
{
}

KeyLookup::Outcome KeyLookup::find(const QString& key, QString& id)
{
  if (const auto known = known_.constFind(key); known != known_.cend()) {
    id = *known;
    return Outcome::Found;
  }
  bindKey(*statement_, key, companyId_);
  QStringList same;
  QStringList alike;
  while (statement_->step()) {
    (statement_->text(0) == key ? same : alike).append(statement_->text(1));
  }
  statement_->reset();
  const QStringList& found = same.isEmpty() ? alike : same;
  if (found.size() != 1) {
    return found.isEmpty() ? Outcome::Missing : Outcome::Ambiguous;
  }
  id = found.first();
  known_.insert(key, id);
  return Outcome::Found;
}

ExistingKeys::ExistingKeys(Connection& connection, const QString& table, const QString& keyColumn,
                           const QString& companyId)
    : statement_(statementByKey(connection, table, keyColumn, keyColumn, companyId)), companyId_(companyId)
{
}

bool ExistingKeys::contains(const QString& key)
{
  bindKey(*statement_, key, companyId_);
  bool found = false;
  while (!found && statement_->step()) {
    found = statement_->text(0) == key;
  }
  statement_->reset();
  return found;
}

}  // namespace kalvor::server
