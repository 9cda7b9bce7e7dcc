#include "server/updates/update_target.h"

#include "rpc/rpc_error.h"
#include "server/queries/packet_reader.h"

namespace kalvor::server {

namespace {

[[noreturn]] void refuseUpdate(const StoredQuery& query)
{
  throw RpcError(RpcError::Refused, QStringLiteral("Данните на форма с код : %1 не могат да бъдат променяни.").arg(query.formId));
}

// The query's item behind a field of the delta, when it is a column of the table that is written.
const QueryItem* writtenItem(const StoredQuery& query, const QString& fieldName)
{
  const QueryItem* item = query.item(fieldName);
  return item && item->ofBaseTable ? item : nullptr;
}

void addColumns(UpdateTarget& target)
{
  const auto& fields = target.delta->records.fields;
  for (int i = 0; i < fields.size(); ++i) {
    const QueryItem* item = writtenItem(*target.query, fields.at(i).name);
    const ColumnInfo* column = item ? target.table->column(item->column) : nullptr;
    if (!column) {
      continue;
    }
    if (column == target.key) {
      target.keyField = i;
    } else if (fields.at(i).updatable && item->field.updatable && !target.stamps.contains(column)) {
      const FieldRow* row = target.query->row(item->field.name);
      target.columns.append({i, column, target.query->captionOf(item->field.name),
                             row && row->text(FieldColumn::FieldType) == u"5"});
    }
  }
}

}  // namespace

QString UpdateTarget::captionOf(const QString& column) const
{
  for (const UpdateColumn& candidate : columns) {
    if (candidate.column->name.compare(column, Qt::CaseInsensitive) == 0) {
      return candidate.caption;
    }
  }
  return query->captionOf(column);
}

Fragment UpdateTarget::rowCondition(const Variant& keyValue, const Session& session) const
{
  Fragment condition{quotedName(key->name) + QStringLiteral(" = ?"), {keyValue}};
  if (stamps.company && stamps.company != key) {
    condition += Fragment{QStringLiteral(" AND ") + quotedName(stamps.company->name) + QStringLiteral(" = ?"),
                          {session.companyId}};
  }
  return condition;
}

UpdateTarget updateTarget(const Access& access, DataRequest request, DeltaPtr delta)
{
  UpdateTarget target;
  target.request = std::move(request);
  target.query = &queryOf(access, target.request);
  target.delta = std::move(delta);
  target.table = target.query->base;
  if (!target.table || target.table->view || target.query->keyField.isEmpty()) {
    refuseUpdate(*target.query);
  }
  target.key = target.table->column(target.query->keyField.section(u'.', -1).trimmed());
  target.stamps = {access.metadata.catalogue().companyColumn(*target.table), target.table->column(u"C_User_Id"),
                   target.table->column(u"C_Datetime"), target.table->column(u"C_Businessgroup_Id")};
  target.rights = formRights(access, target.request.formId);
  addColumns(target);
  if (!target.key || target.keyField < 0 ||
      qsizetype(target.delta->status.size()) != target.delta->records.rows) {
    refuseUpdate(*target.query);
  }
  return target;
}

}  // namespace kalvor::server
