// Documents that become entries.
#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/posting/document_counts.h"
#include "server/posting/post_global_document.h"
#include "server/rights/row_security.h"
#include "server/updates/update_errors.h"

namespace kalvor::server {

namespace {

// The form of a call that does something to a global sale document.
const StoredQuery& globalDocumentForm(CallContext& call, int formId)
{
  const StoredQuery* query = call.metadata->query(formId, 0);
  if (!query || !query->base || query->base->name.compare(u"D_GlobalSaleHeader", Qt::CaseInsensitive) != 0) {
    throw RpcError(RpcError::Refused, QStringLiteral("Форма с код : %1 не е за документи за осчетоводяване.").arg(formId));
  }
  return *query;
}

bool anyRow(Connection& db, const Fragment& sql) { return !isNull(db.value(sql.sql, sql.values)); }

// That the document is of the company and that the user's row filter on the form lets him see it.
void requireVisibleDocument(CallContext& call, const StoredQuery& query, const QString& documentId)
{
  const ParameterArray parameters{{QStringLiteral("User_Id"), call.session.userId},
                                  {QStringLiteral("Comp_Id"), call.session.companyId},
                                  {QStringLiteral("Bg_Id"), call.session.groupId}};
  const Fragment visible = query.selectFrom(
      {QStringLiteral("1"), {}},
      {query.keyExpression() + Fragment{QStringLiteral(" = ?"), {documentId}}, rowSecurity(call.access(), query, parameters)},
      call.session.companyId, parameters);
  if (anyRow(call.db, visible)) {
    return;
  }
  const Fragment saved{QStringLiteral("SELECT 1 FROM D_GlobalSaleHeader WHERE Id = ? AND Comp_Id = ?"),
                       {documentId, call.session.companyId}};
  if (anyRow(call.db, saved)) {
    throw outsideSecurity(query.formId);
  }
  throw RpcError(RpcError::Refused, QStringLiteral("Документът не съществува."));
}

void requireNotLocked(CallContext& call, const QString& documentId)
{
  const QString holder = call.core.state().documentHolder(call.session, documentId);
  if (!holder.isEmpty()) {
    throw RpcError(RpcError::Refused, QStringLiteral("Документа е отворен за редакция от %1!").arg(nameOfUser(call, holder)));
  }
}

}  // namespace

Variant callPostGlobalDoc(CallContext& call)
{
  const QString documentId = call.text(0);
  const int formId = call.integer(1);
  requireRight(call.access(), formId, FormRight::Finish);
  requireVisibleDocument(call, globalDocumentForm(call, formId), documentId);
  requireNotLocked(call, documentId);
  const PostedDocument posted = postGlobalDocument(call.access(), documentId);
  call.arguments[2] = VariantArray{posted.id, posted.shipmentId, QString(), int(posted.kind), posted.number};
  return 0;
}

Variant callDeleteGlobalDoc(CallContext& call)
{
  const QString documentId = call.text(0);
  const int formId = call.integer(1);
  requireRight(call.access(), formId, FormRight::Delete);
  requireVisibleDocument(call, globalDocumentForm(call, formId), documentId);
  requireNotLocked(call, documentId);
  const qint64 deleted = call.db.execute(
      QStringLiteral("DELETE FROM D_GlobalSaleHeader WHERE Id = ? AND Comp_Id = ? AND GlobDocIsPosted = 0"),
      {documentId, call.session.companyId});
  if (deleted != 1) {
    throw RpcError(RpcError::Refused, QStringLiteral("Документът е осчетоводен и не може да бъде изтрит."));
  }
  call.db.execute(QStringLiteral("DELETE FROM D_GlobalSaleLine WHERE Master_Id = ?"), {documentId});
  return 0;
}

Variant callGetCountOfDocs(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  VariantArray counts;
  for (const int count : documentCounts(call.access(), call.integer(0), call.integer(1), call.text(2))) {
    counts.append(count);
  }
  return counts;
}

}  // namespace kalvor::server
