#include "server/catalogue/metadata.h"

#include <QRandomGenerator>

#include "rpc/rpc_error.h"
#include "server/log.h"

namespace kalvor::server {

namespace {

const QString generationName = QStringLiteral("metadata");

}  // namespace

std::shared_ptr<const Metadata> Metadata::read(Connection& connection)
{
  auto metadata = std::make_shared<Metadata>();
  metadata->catalogue_ = Catalogue::read(connection);
  if (metadata->catalogue_.table(u"S_QueryList")) {
    metadata->readQueries(connection);
    metadata->readFields(connection);
    metadata->readForms(connection);
  }
  for (const auto& query : metadata->queries_) {
    if (const QString why = query->compile(metadata->catalogue_); !why.isEmpty()) {
      logEvent(LogLevel::Error, "stored_query_unusable", {{"query", QString::number(query->id)}, {"reason", why}});
      metadata->broken_.insert(query->id, why);
    }
  }
  return metadata;
}

void Metadata::readQueries(Connection& connection)
{
  auto rows = connection.prepare(
      QStringLiteral("SELECT Id, Description, Form_Id, Ds_Index, SqlText, BaseTable, KeyField, CompanyField, DefaultOrder "
                     "FROM S_QueryList ORDER BY Form_Id, Ds_Index, Id"));
  while (rows->step()) {
    auto query = std::make_unique<StoredQuery>();
    query->id = int(rows->integer(0));
    query->description = rows->text(1);
    query->formId = int(rows->integer(2));
    query->dsIndex = int(rows->integer(3));
    query->sqlText = rows->text(4);
    query->baseTable = rows->text(5);
    query->keyField = rows->text(6);
    query->companyField = rows->text(7);
    query->defaultOrder = rows->text(8);
    byId_.insert(query->id, query.get());
    queries_.push_back(std::move(query));
  }
}

void Metadata::readFields(Connection& connection)
{
  auto rows = connection.prepare(
      QStringLiteral("SELECT SQL_ID, %1 FROM S_FieldList ORDER BY SQL_ID, FieldIndex").arg(fieldColumnNames()));
  while (rows->step()) {
    StoredQuery* query = byId_.value(int(rows->integer(0)));
    if (!query) {
      continue;
    }
    FieldRow row;
    for (int i = 0; i < fieldColumnCount; ++i) {
      row.values.append(rows->value(i + 1));
    }
    query->rows.append(row);
  }
}

void Metadata::readForms(Connection& connection)
{
  auto rows = connection.prepare(
      QStringLiteral("SELECT ID, Ds_Index, Caption, ClassName, CaptionFields, IntegerValue, TextValue, BaseTable, FormFilter, "
                     "OrderBy, LineColors FROM S_Forms ORDER BY ID, Ds_Index"));
  while (rows->step()) {
    FormDescription form{int(rows->integer(0)), int(rows->integer(1)), rows->text(7), {}};
    // Column 3 has no meaning for the client and is kept by nobody.
    form.row = {rows->value(2), rows->value(3), rows->value(4), Variant(), rows->value(5), rows->value(6),
                rows->value(7), rows->value(1), rows->value(8), rows->value(9), rows->value(10)};
    forms_.append(form);
  }
}

const StoredQuery* Metadata::usable(const StoredQuery* query) const
{
  if (query && broken_.contains(query->id)) {
    throw RpcError(RpcError::Internal, QStringLiteral("Заявка номер %1 не може да бъде изпълнена. Обърнете се към "
                                                      "системния администратор.").arg(query->id));
  }
  return query;
}

const StoredQuery* Metadata::query(int formId, int dsIndex) const
{
  for (const auto& candidate : queries_) {
    if (candidate->formId == formId && candidate->dsIndex == dsIndex) {
      return usable(candidate.get());
    }
  }
  return nullptr;
}

const StoredQuery* Metadata::queryById(int id) const { return usable(byId_.value(id)); }

QList<const StoredQuery*> Metadata::queriesOfForm(int formId) const
{
  QList<const StoredQuery*> found;
  for (const auto& candidate : queries_) {
    if (candidate->formId == formId && !broken_.contains(candidate->id)) {
      found.append(candidate.get());
    }
  }
  return found;
}

QList<const StoredQuery*> Metadata::queriesOver(const TableInfo& table) const
{
  QList<const StoredQuery*> found;
  for (const auto& candidate : queries_) {
    if (candidate->base == &table && !candidate->keyField.isEmpty() && !broken_.contains(candidate->id)) {
      found.append(candidate.get());
    }
  }
  return found;
}

const FormDescription* Metadata::form(int formId, int dsIndex) const
{
  for (const FormDescription& candidate : forms_) {
    if (candidate.formId == formId && candidate.dsIndex == dsIndex) {
      return &candidate;
    }
  }
  return nullptr;
}

QList<int> Metadata::formsOver(const QString& baseTable) const
{
  QList<int> found;
  for (const auto& candidate : queries_) {
    if (candidate->dsIndex == 0 && candidate->baseTable.compare(baseTable, Qt::CaseInsensitive) == 0) {
      found.append(candidate->formId);
    }
  }
  return found;
}

MetadataPtr MetadataCache::current(Connection& connection)
{
  const qint64 generation =
      connection.value(QStringLiteral("SELECT Number FROM srv_Generation WHERE Name = ?"), {generationName}).toLongLong();
  const std::lock_guard lock(mutex_);
  if (!current_ || generation != generation_) {
    current_ = Metadata::read(connection);
    generation_ = generation;
  }
  return current_;
}

void MetadataCache::touch(Connection& connection)
{
  // A number at random: one that was rolled back is never given again.
  connection.execute(QStringLiteral("UPDATE srv_Generation SET Number = ? WHERE Name = ?"),
                     {qint64(QRandomGenerator::system()->generate64() >> 2), generationName});
}

bool MetadataCache::isMetadataTable(QStringView table)
{
  static const QStringList tables{QStringLiteral("s_querylist"), QStringLiteral("s_fieldlist"), QStringLiteral("s_forms")};
  return tables.contains(table.toString().toLower());
}

}  // namespace kalvor::server
