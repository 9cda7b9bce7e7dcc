#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/rights/form_rights.h"

namespace kalvor::server {

namespace {

// The name of the employee behind a user, else the user code.
QString nameOfUser(CallContext& call, const QString& userId)
{
  const Variant name = call.db.value(
      QStringLiteral("SELECT e.Name FROM N_Users u INNER JOIN N_Employee e ON e.Id = u.Employee_Id AND e.Comp_Id = u.Comp_Id "
                     "WHERE u.Id = ? AND u.Comp_Id = ?"), {userId, call.session.companyId});
  return name.toString().isEmpty() ? userId : name.toString();
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
