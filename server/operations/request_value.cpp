#include "rpc/rpc_error.h"
#include "server/client_sql/client_select.h"
#include "server/client_sql/statement_template.h"
#include "server/operations/handlers.h"
#include "server/operations/own_statements.h"
#include "server/queries/filter_condition.h"
#include "server/queries/order_terms.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxValueRows = 100'000;

struct ValueRows {
  VariantArray rows;  // of row arrays
  int columns = 0;
};

// All rows, or the first two: enough to tell one match from several.
ValueRows readValueRows(Connection& db, const Fragment& sql, bool allRows)
{
  auto statement = db.prepare(sql.sql + QStringLiteral(" LIMIT ?"), StatementUse::Asked);
  for (int i = 0; i < sql.values.size(); ++i) {
    statement->bind(i, sql.values.at(i));
  }
  statement->bind(int(sql.values.size()), qlonglong(allRows ? maxValueRows + 1 : 2));
  ValueRows result;
  while (statement->step()) {
    result.columns = statement->columnCount();
    VariantArray row;
    for (int i = 0; i < result.columns; ++i) {
      row.append(statement->value(i));
    }
    result.rows.append(Variant(row));
  }
  if (result.rows.size() > maxValueRows) {
    throw RpcError(RpcError::Refused, QStringLiteral("Заявката връща твърде много редове."));
  }
  return result;
}

// exec dbo.usp_GetUserSettings 'user', 'company': the session's own row, empty when there is none yet.
std::optional<ValueRows> runProcedure(CallContext& call, const QString& statement)
{
  const auto values = matchTemplate(statement, "exec dbo.usp_GetUserSettings :user, :company");
  if (!values) {
    return {};
  }
  if (values->value(QStringLiteral("user")).compare(call.session.userId, Qt::CaseInsensitive) != 0 ||
      values->value(QStringLiteral("company")) != call.session.companyId) {
    throw RpcError(RpcError::Forbidden, QStringLiteral("Може да четете само собствените си настройки."));
  }
  ValueRows own = readValueRows(call.db,
      {QStringLiteral("SELECT Id, Comp_Id, Settings, UserActions FROM s_UserSettings WHERE Id = ? AND Comp_Id = ?"),
       {call.session.userId, call.session.companyId}}, false);
  if (own.rows.isEmpty()) {
    own.rows.append(Variant(VariantArray{call.session.userId, call.session.companyId, QString(), QString()}));
  }
  return own;
}

ValueRows runSelect(CallContext& call, const std::optional<ClientSelect>& select, const FilterArray& filter, bool allRows)
{
  if (!select) {
    refuseStatement();
  }
  return readValueRows(call.db, clientSelectStatement(call.access(), *select, filter), allRows);
}

// Columns of a stored query, by field names.
ValueRows runQuery(CallContext& call, const FilterArray& filter, bool allRows)
{
  const StoredQuery* query = call.metadata->queryById(call.integer(0));
  if (!query) {
    throw RpcError(RpcError::Refused, QStringLiteral("Заявка номер %1 не съществува.").arg(call.integer(0)));
  }
  const Access access = call.access();
  if (!isOpenQuery(query->formId)) {
    requireRight(access, query->formId, FormRight::Read);
  }
  const ParameterArray parameters{{QStringLiteral("User_Id"), call.session.userId},
                                  {QStringLiteral("Comp_Id"), call.session.companyId},
                                  {QStringLiteral("Bg_Id"), call.session.groupId}};
  const QueryFields fields(*query, parameters);
  Fragment list;
  const QStringList names = call.text(2).split(u',');
  if (names.size() > maxSelectColumns) {
    refuseStatement();
  }
  for (const QString& name : names) {
    const auto field = fields.resolve(name.trimmed());
    if (!field) {
      throw RpcError(RpcError::Refused, QStringLiteral("Непозната колона „%1“ в заявка номер %2.").arg(name.trimmed().left(64)).arg(query->id));
    }
    const QString alias = field->type == DataType::Float ? QStringLiteral(" AS \"value:AMOUNT\"") : QString();
    list += QLatin1StringView(list.isEmpty() ? "" : ", ") + field->expression + alias;
  }
  Fragment sql = query->selectFrom(list, {filterCondition(filter, fields), rowSecurity(access, *query, parameters)},
                                   call.session.companyId, parameters);
  bool first = true;
  for (const OrderTerm& term : orderTerms(query->defaultOrder, fields)) {
    sql += QLatin1StringView(first ? " ORDER BY " : ", ") + term.expression + QLatin1StringView(term.descending ? " DESC" : "");
    first = false;
  }
  return readValueRows(call.db, sql, allRows);
}

bool isTrue(const Variant& value) { return value.toBool() || variantText(value) == u"-1"; }

}  // namespace

Variant callRequestValue(CallContext& call)
{
  constexpr int statementMode = -1;
  constexpr int tableMode = 0;
  const int mode = call.integer(0);
  const QString source = call.text(1);
  const FilterArray filter = filterFromVariant(call.arguments.at(3));
  const bool allRows = isTrue(call.arguments.at(5));
  ValueRows found;
  if (mode == statementMode) {
    const auto answered = runProcedure(call, source);
    found = answered ? *answered : runSelect(call, parseClientSelect(source), filter, allRows);
  } else if (mode == tableMode) {
    found = runSelect(call, tableSelect(source, call.text(2)), filter, allRows);
  } else {
    found = runQuery(call, filter, allRows);
  }
  if (found.rows.isEmpty()) {
    call.arguments[4] = Variant();
  } else if (allRows) {
    call.arguments[4] = found.rows;
  } else {
    call.arguments[4] = found.columns == 1 ? found.rows.first().toList().first() : found.rows.first();
  }
  return int(found.rows.size());
}

}  // namespace kalvor::server
