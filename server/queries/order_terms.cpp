#include "server/queries/order_terms.h"

#include "rpc/rpc_error.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxOrderTerms = 10;

// Takes the direction off the end of a term.
bool takeDescending(QString& name)
{
  const qsizetype blank = name.lastIndexOf(u' ');
  const QString last = name.mid(blank + 1).toUpper();
  if (blank > 0 && (last == u"ASC" || last == u"DESC")) {
    name = name.left(blank).trimmed();
    return last == u"DESC";
  }
  return false;
}

}  // namespace

QList<OrderTerm> orderTerms(const QString& order, const FieldResolver& fields)
{
  QList<OrderTerm> terms;
  for (const QString& part : order.split(u',')) {
    QString name = part.trimmed();
    if (name.isEmpty()) {
      continue;
    }
    const bool descending = takeDescending(name);
    const auto field = fields.resolve(name);
    if (!field || field->type == DataType::Blob || terms.size() >= maxOrderTerms) {
      throw RpcError(RpcError::Refused, QStringLiteral("Непознато поле в подреждането: „%1“.").arg(name.left(100)));
    }
    const bool again = std::any_of(terms.begin(), terms.end(), [&](const OrderTerm& term) {
      return term.expression.sql == field->expression.sql;
    });
    if (!again) {
      terms.append({field->expression, field->type, descending});
    }
  }
  return terms;
}

}  // namespace kalvor::server
