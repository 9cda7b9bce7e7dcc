#include "server/operations/handlers.h"

namespace kalvor::server {

Variant callGetFormsDescription(CallContext& call)
{
  const FormDescription* form = call.metadata->form(call.integer(0), call.integer(1));
  call.arguments[2] = form ? Variant(VariantArray{Variant(form->row)}) : Variant();
  return form ? 1 : 0;
}

Variant callGetFieldsDescription(CallContext& call)
{
  VariantArray rows;
  if (const StoredQuery* query = call.metadata->query(call.integer(0), call.integer(1))) {
    for (const FieldRow& row : query->rows) {
      rows.append(Variant(row.values));
    }
  }
  call.arguments[2] = rows.isEmpty() ? Variant() : Variant(rows);
  return int(rows.size());
}

Variant callGetQueryId(CallContext& call)
{
  const StoredQuery* query = call.metadata->query(call.integer(0), call.integer(1));
  return query ? query->id : 0;
}

Variant callGetAbsoluteNoSerieId(CallContext& call)
{
  constexpr int absoluteNumbers = 1;
  return call.db.value(QStringLiteral("SELECT Id FROM N_Series WHERE Comp_Id = ? AND Kind = ? ORDER BY Id LIMIT 1"),
                       {call.session.companyId, absoluteNumbers}).toString();
}

}  // namespace kalvor::server
