#include "server/updates/change_statement.h"

#include "rpc/rpc_error.h"
#include "server/queries/packet_reader.h"
#include "server/updates/column_values.h"
#include "server/updates/posted_guard.h"
#include "server/updates/row_writer.h"
#include "server/updates/update_errors.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxBatchRows = 100'000;

[[noreturn]] void refuseChange(const QString& reason) { throw RpcError(RpcError::Refused, reason); }

FormRight rightOf(ClientChange::Kind kind)
{
  switch (kind) {
    case ClientChange::Kind::Insert: return FormRight::Insert;
    case ClientChange::Kind::Update: return FormRight::Edit;
    default: return FormRight::Delete;
  }
}

bool hasParameters(const StoredQuery& query)
{
  return std::any_of(query.parts.tokens.begin(), query.parts.tokens.end(),
                     [](const SqlToken& token) { return token.kind == TokenKind::Parameter; });
}

// The query's item that shows the column of its own table; -1 when there is none.
int itemOf(const StoredQuery& query, const ColumnInfo& column)
{
  for (int i = 0; i < query.items.size(); ++i) {
    const QueryItem& item = query.items.at(i);
    if (item.ofBaseTable && item.column.compare(column.name, Qt::CaseInsensitive) == 0) {
      return i;
    }
  }
  return -1;
}

const ColumnInfo& columnOf(const TableInfo& table, const QString& name)
{
  const ColumnInfo* column = table.column(name);
  if (!column) {
    refuseChange(QStringLiteral("Непозната колона „%1“.").arg(name.left(64)));
  }
  return *column;
}

void requireDistinct(const QStringList& columns)
{
  QSet<QString> names;
  for (const QString& column : columns) {
    if (names.contains(column.toCaseFolded())) {
      refuseChange(QStringLiteral("Колона „%1“ е посочена два пъти.").arg(column.left(64)));
    }
    names.insert(column.toCaseFolded());
  }
}

StampColumns stampsOf(const Access& access, const TableInfo& table)
{
  return {access.metadata.catalogue().companyColumn(table), table.column(u"C_User_Id"), table.column(u"C_Datetime"),
          table.column(u"C_Businessgroup_Id")};
}

// What the server fills itself may stand in an INSERT, and for the company it must say the session's.
bool isFilledByServer(const Access& access, const ClientChange& change, const TableInfo& table, const ColumnInfo& column)
{
  return change.kind == ClientChange::Kind::Insert && stampsOf(access, table).contains(&column);
}

bool writesColumns(const Access& access, const StoredQuery& query, const ClientChange& change, const TableInfo& table)
{
  const QString key = query.keyField.section(u'.', -1).trimmed();
  const StampColumns stamps = stampsOf(access, table);
  for (const QString& name : change.columns) {
    const ColumnInfo& column = columnOf(table, name);
    const bool isKey = column.name.compare(key, Qt::CaseInsensitive) == 0;
    const int item = itemOf(query, column);
    const bool written = item >= 0 && (isKey ? change.kind == ClientChange::Kind::Insert
                                             : query.items.at(item).field.updatable && !stamps.contains(&column));
    if (!written && !isFilledByServer(access, change, table, column)) {
      return false;
    }
  }
  return true;
}

// The conditions over columns of the table itself.
FilterArray ownConditions(const ClientChange& change, const TableInfo& table)
{
  FilterArray conditions = change.where;
  for (FilterRow& row : conditions) {
    const bool qualified = row.field.contains(u'.');
    if (qualified && row.field.section(u'.', 0, 0).compare(table.name, Qt::CaseInsensitive) != 0) {
      refuseChange(QStringLiteral("Непозната колона „%1“.").arg(row.field.left(64)));
    }
    row.field = table.name + u'.' + columnOf(table, qualified ? row.field.section(u'.', 1) : row.field).name;
  }
  return conditions;
}

// The record with the values that the statement gives.
VariantArray withValues(const Access& access, const StoredQuery& query, const ClientChange& change, const TableInfo& table,
                        VariantArray record, const VariantArray& values)
{
  for (qsizetype i = 0; i < values.size(); ++i) {
    const ColumnInfo& column = columnOf(table, change.columns.at(i));
    const auto value = columnValue(column, values.at(i));
    if (!value) {
      throw invalidValue(query.captionOf(column.name));
    }
    if (isFilledByServer(access, change, table, column)) {
      if (&column == stampsOf(access, table).company && value->toString() != access.session.companyId) {
        throw RpcError(RpcError::Forbidden, QStringLiteral("Може да записвате само данни на собствената си фирма."));
      }
      continue;
    }
    record[itemOf(query, column)] = *value;
  }
  return record;
}

}  // namespace

bool ChangeWriter::hasRight(const StoredQuery& query, ClientChange::Kind kind) const
{
  const FormRights rights = formRights(access_, query.formId);
  // Lines of a new document are entered with the right to add it; the writer of the rows knows which it is.
  const bool entersLine = query.dsIndex > 0 && kind != ClientChange::Kind::Delete;
  return entersLine ? rights.has(FormRight::Edit) || rights.has(FormRight::Insert) : rights.has(rightOf(kind));
}

const StoredQuery& ChangeWriter::queryFor(const ClientChange& change, const TableInfo& table) const
{
  const StoredQuery* withoutRight = nullptr;
  bool anyForm = false;
  for (const StoredQuery* query : access_.metadata.queriesOver(table)) {
    if (query->parts.nested() || hasParameters(*query)) {
      continue;
    }
    anyForm = true;
    if (!writesColumns(access_, *query, change, table)) {
      continue;
    }
    if (hasRight(*query, change.kind)) {
      return *query;
    }
    withoutRight = withoutRight ? withoutRight : query;
  }
  if (withoutRight) {
    refuseRight(withoutRight->formId, rightOf(change.kind));
  }
  refuseChange(anyForm ? QStringLiteral("Колоните на таблица %1 не могат да бъдат променяни така.").arg(table.name)
                       : QStringLiteral("Таблица %1 не може да бъде променяна.").arg(table.name));
}

void ChangeWriter::write(const ClientChange& change)
{
  const TableInfo* table = access_.metadata.catalogue().table(change.table);
  if (!table || table->view) {
    refuseChange(QStringLiteral("Непозната таблица „%1“.").arg(change.table.left(64)));
  }
  requireDistinct(change.columns);
  const StoredQuery& query = queryFor(change, *table);
  DataRequest request;
  request.formId = query.formId;
  request.dsIndex = query.dsIndex;
  request.queryId = query.id;
  // An INSERT needs the fields alone.
  request.filter = change.kind == ClientChange::Kind::Insert
                       ? FilterArray{{QStringLiteral("1"), QStringLiteral("="), 2, {}, {}}}
                       : ownConditions(change, *table);
  const DataPacketPtr found = readPacket(access_, request, {}, -1);
  const RecordSet& records = found->records;
  auto delta = std::make_shared<Delta>();
  delta->records = RecordSet(records.fields);
  const auto append = [&](const VariantArray& record, UpdateStatus status) {
    delta->records.appendRow(record);
    delta->status.push_back(status);
  };
  if (change.kind == ClientChange::Kind::Insert) {
    for (const VariantArray& values : change.rows) {
      append(withValues(access_, query, change, *table, VariantArray(records.fields.size()), values), UpdateStatus::Inserted);
    }
  }
  for (qsizetype row = 0; row < records.rows; ++row) {
    VariantArray record;
    for (int field = 0; field < records.fields.size(); ++field) {
      record.append(records.value(row, field));
    }
    const bool deletes = change.kind == ClientChange::Kind::Delete;
    append(record, deletes ? UpdateStatus::Deleted : UpdateStatus::Unmodified);
    if (!deletes) {
      append(withValues(access_, query, change, *table, record, change.rows.first()), UpdateStatus::Modified);
    }
  }
  rows_ += records.rows + change.rows.size();
  if (rows_ > maxBatchRows) {
    refuseChange(QStringLiteral("Командите променят повече от %1 записа.").arg(maxBatchRows));
  }
  const UpdateTarget target = updateTarget(access_, request, delta);
  const QString posted = postedChange(access_, target, insertedMasters_);
  RowWriter writer(access_, target, insertedMasters_);
  writer.write();
  writer.checkWritten();
  refusePostedChange(posted);
  metadataChanged_ = metadataChanged_ || MetadataCache::isMetadataTable(table->name);
}

void ChangeWriter::finish()
{
  if (metadataChanged_) {
    MetadataCache::touch(access_.db);
  }
}

}  // namespace kalvor::server
