#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/rights/row_security.h"
#include "server/updates/update_errors.h"

namespace kalvor::server {

QString nameOfUser(CallContext& call, const QString& userId)
{
  const Variant name = call.db.value(
      QStringLiteral("SELECT e.Name FROM N_Users u INNER JOIN N_Employee e ON e.Id = u.Employee_Id AND e.Comp_Id = u.Comp_Id "
                     "WHERE u.Id = ? AND u.Comp_Id = ?"), {userId, call.session.companyId});
  return name.toString().isEmpty() ? userId : name.toString();
}

namespace {

bool hasRow(Connection& db, const Fragment& sql) { return !isNull(db.value(sql.sql, sql.values)); }

// A document that the user's rights hide, or another company's, is neither held by him nor does he learn who holds it.
// A document that is not saved yet is nobody's secret.
void requireVisible(CallContext& call, int formId, const QString& documentId)
{
  const StoredQuery* query = call.metadata->query(formId, 0);
  const Fragment key = query ? query->keyExpression() : Fragment();
  if (key.isEmpty() || !query->base) {
    return;
  }
  const QString keyColumn = query->keyField.section(u'.', -1).trimmed();
  const ParameterArray parameters{{QStringLiteral("User_Id"), call.session.userId},
                                  {QStringLiteral("Comp_Id"), call.session.companyId},
                                  {QStringLiteral("Bg_Id"), call.session.groupId}};
  const Fragment visible = query->selectFrom(
      {QStringLiteral("1"), {}},
      {key + Fragment{QStringLiteral(" = ?"), {documentId}}, rowSecurity(call.access(), *query, parameters)},
      call.session.companyId, parameters);
  const Fragment saved{
      QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ?").arg(quotedName(query->base->name), quotedName(keyColumn)),
      {documentId}};
  if (!hasRow(call.db, visible) && hasRow(call.db, saved)) {
    throw outsideSecurity(formId);
  }
}

}  // namespace

Variant callCheckOutDocument(CallContext& call)
{
  const int formId = call.integer(1);
  const FormRights rights = formRights(call.access(), formId);
  if (!rights.has(FormRight::Edit) && !rights.has(FormRight::Insert)) {
    refuseRight(formId, FormRight::Edit);
  }
  const QString documentId = call.text(0);
  if (documentId.isEmpty() || documentId.size() > 64) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Не е посочен документ."));
  }
  requireVisible(call, formId, documentId);
  const QString holder = call.core.state().lockDocument(call.session, documentId, formId);
  call.arguments[2] = holder.isEmpty() ? QString() : nameOfUser(call, holder);
  return holder.isEmpty() ? 0 : 1;
}

Variant callCheckInDocument(CallContext& call)
{
  call.core.state().unlockDocument(call.session, call.text(0));
  return 0;
}

}  // namespace kalvor::server
