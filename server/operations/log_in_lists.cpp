#include "server/operations/handlers.h"

namespace kalvor::server {

namespace {

// All rows of a statement as an array of arrays.
VariantArray rowsOf(Connection& db, const QString& sql, const VariantArray& values)
{
  VariantArray rows;
  const RecordSet records = db.query(sql, values);
  for (qsizetype row = 0; row < records.rows; ++row) {
    VariantArray line;
    for (int i = 0; i < records.fields.size(); ++i) {
      line.append(records.value(row, i));
    }
    rows.append(Variant(line));
  }
  return rows;
}

}  // namespace

Variant callGetCompaniesList(CallContext& call)
{
  call.arguments[0] = rowsOf(call.db, QStringLiteral("SELECT Id, Name FROM N_Company ORDER BY Name, Id"), {});
  return 0;
}

Variant callGetBGroupsList(CallContext& call)
{
  call.arguments[1] = rowsOf(call.db, QStringLiteral("SELECT Id, Name FROM N_BusinessGroup WHERE Comp_Id = ? ORDER BY Name, Id"),
                             {call.text(0)});
  return 0;
}

Variant callGetUsersList(CallContext& call)
{
  const QString groupId = call.text(0);
  const QString companyId = call.text(1);
  const QString active = QStringLiteral("SELECT u.Id FROM N_Users u WHERE u.Comp_Id = ? AND u.Active = 1");
  if (groupId.isEmpty()) {
    call.arguments[2] = rowsOf(call.db, active + QStringLiteral(" ORDER BY u.Id"), {companyId});
    return 0;
  }
  call.arguments[2] = rowsOf(call.db,
      active + QStringLiteral(" AND (u.Id = 'SUPERVSR' OR EXISTS (SELECT 1 FROM S_UserGroups g WHERE g.User_Id = u.Id AND "
                              "g.Comp_Id = u.Comp_Id AND g.BusinessGroup_Id = ?)) ORDER BY u.Id"), {companyId, groupId});
  return 0;
}

}  // namespace kalvor::server
