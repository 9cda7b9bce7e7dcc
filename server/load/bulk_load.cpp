#include "server/load/bulk_load.h"

#include <QDateTime>

#include "server/load/csv_reader.h"
#include "server/load/id_sequence.h"
#include "server/load/load_columns.h"
#include "server/load/load_values.h"
#include "server/load/row_completion.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

class TableLoader {
 public:
  TableLoader(Connection& connection, const LoadRequest& request, QByteArrayView csv)
      : connection_(connection), request_(request), reader_(csv), table_(loadableTable(connection, request.table)),
        columns_(planColumns(connection, request, table_, readHeader()))
  {
    chooseColumns();
  }

  LoadResult run()
  {
    LoadRow row(names_);
    if (completion_) {
      completion_->start(row);
    }
    findSlots(row);
    RowInserter inserter(connection_, table_.name, names_);
    LoadResult result;
    while (reader_.next()) {
      row.clear();
      readRow(row);
      if (isKnown(row)) {
        ++result.skipped;
        continue;
      }
      complete(row);
      insert(inserter, row);
      ++result.rows;
    }
    if (completion_) {
      completion_->finish();
    }
    return result;
  }

  qint64 line() const { return reader_.line(); }

 private:
  [[noreturn]] void fail(const QString& column, const QString& message) const
  {
    throw LoadError(QStringLiteral("%1, ред %2, колона %3: %4")
        .arg(request_.fileName).arg(reader_.line()).arg(column, message));
  }

  QStringList readHeader();
  void chooseColumns();
  void findSlots(const LoadRow& row);
  void readRow(LoadRow& row);
  Variant lookedUp(const LoadCell& cell, const QString& key);
  bool isKnown(const LoadRow& row);
  void complete(LoadRow& row);
  void insert(RowInserter& inserter, const LoadRow& row);

  Connection& connection_;
  const LoadRequest& request_;
  CsvReader reader_;
  size_t fileColumns_ = 0;  // read with the header, before the columns are planned
  TableInfo table_;
  LoadColumns columns_;
  QStringList names_;
  std::unique_ptr<RowCompletion> completion_;
  std::unique_ptr<ExistingKeys> existing_;
  IdSequence ids_;
  QDateTime now_ = QDateTime::currentDateTime();
  QList<int> cellSlots_, constantSlots_;
  int id_ = -1;
  int company_ = -1;
  int key_ = -1;
  int auditUser_ = -1;
  int auditTime_ = -1;
};

QStringList TableLoader::readHeader()
{
  if (!reader_.next()) {
    throw LoadError(QStringLiteral("%1: файлът е празен").arg(request_.fileName));
  }
  QStringList header;
  for (const std::string_view name : reader_.fields()) {
    header.append(QString::fromUtf8(name.data(), qsizetype(name.size())).trimmed());
    if (header.count(header.last()) > 1) {
      throw LoadError(QStringLiteral("%1: колона „%2“ се повтаря").arg(request_.fileName, header.last()));
    }
  }
  fileColumns_ = reader_.fields().size();
  return header;
}

void TableLoader::chooseColumns()
{
  for (const LoadCell& cell : columns_.cells) {
    names_.append(cell.column->name);
  }
  for (const LoadConstant& constant : columns_.constants) {
    names_.append(constant.column->name);
  }
  QStringList wanted{QStringLiteral("Id"), QStringLiteral("Comp_Id"), QStringLiteral("C_User_Id"),
                     QStringLiteral("C_Datetime")};
  if (table_.column(u"Comp_Id")) {
    if (isNull(connection_.value(QStringLiteral("SELECT 1 FROM N_Company WHERE Id = ?"), {request_.companyId}))) {
      throw LoadError(QStringLiteral("няма фирма „%1“").arg(request_.companyId));
    }
    if (const auto defaults = readCompanyDefaults(connection_, request_.companyId)) {
      completion_ = rowCompletion(table_.name, connection_, *defaults);
    }
  }
  if (completion_) {
    wanted += completion_->columns();
  }
  for (const QString& name : std::as_const(wanted)) {
    const ColumnInfo* column = table_.column(name);
    if (column && !names_.contains(column->name)) {
      names_.append(column->name);
    }
  }
}

void TableLoader::findSlots(const LoadRow& row)
{
  for (const LoadCell& cell : columns_.cells) {
    cellSlots_.append(int(names_.indexOf(cell.column->name)));
  }
  for (const LoadConstant& constant : columns_.constants) {
    constantSlots_.append(int(names_.indexOf(constant.column->name)));
  }
  id_ = row.slot(QLatin1StringView("Id"));
  company_ = row.slot(QLatin1StringView("Comp_Id"));
  auditUser_ = row.slot(QLatin1StringView("C_User_Id"));
  auditTime_ = row.slot(QLatin1StringView("C_Datetime"));
  if (const QString key = naturalKey(table_); names_.contains(key)) {
    key_ = int(names_.indexOf(key));
    existing_ = std::make_unique<ExistingKeys>(connection_, table_.name, key,
                                               company_ < 0 ? QString() : request_.companyId);
  }
}

Variant TableLoader::lookedUp(const LoadCell& cell, const QString& key)
{
  QString id;
  switch (cell.lookup->find(key, id)) {
    case KeyLookup::Outcome::Found: return id;
    case KeyLookup::Outcome::Missing: fail(cell.fileName, QStringLiteral("няма „%1“ в %2").arg(key, cell.lookupTable));
    case KeyLookup::Outcome::Ambiguous: break;
  }
  fail(cell.fileName, QStringLiteral("„%1“ се среща повече от веднъж в %2").arg(key, cell.lookupTable));
}

void TableLoader::readRow(LoadRow& row)
{
  const auto& fields = reader_.fields();
  if (fields.size() != fileColumns_) {
    throw LoadError(QStringLiteral("%1, ред %2: %3 полета вместо %4")
        .arg(request_.fileName).arg(reader_.line()).arg(fields.size()).arg(fileColumns_));
  }
  static const ColumnInfo keyText{QStringLiteral("key"), DataType::WideString, 0, false, false};
  QString error;
  for (qsizetype i = 0; i < columns_.cells.size(); ++i) {
    const LoadCell& cell = columns_.cells.at(i);
    const Variant value =
        parseCell(fields[size_t(cell.fileColumn)], cell.lookup ? keyText : *cell.column, error);
    if (!error.isEmpty()) {
      fail(cell.fileName, error);
    }
    row[cellSlots_.at(i)] = cell.lookup && !isNull(value) ? lookedUp(cell, value.toString()) : value;
  }
  for (qsizetype i = 0; i < columns_.constants.size(); ++i) {
    row[constantSlots_.at(i)] = columns_.constants.at(i).value;
  }
}

bool TableLoader::isKnown(const LoadRow& row)
{
  if (!existing_ || row.isNull(key_) || !existing_->contains(row.text(key_))) {
    return false;
  }
  if (request_.existing == ExistingRecords::Refuse) {
    fail(names_.at(key_), QStringLiteral("вече има запис „%1“; с --skip-existing съществуващите се пропускат")
        .arg(row.text(key_)));
  }
  return true;
}

void TableLoader::complete(LoadRow& row)
{
  if (id_ >= 0) {
    row.setDefault(id_, ids_.next());
  }
  if (company_ >= 0) {
    row[company_] = request_.companyId;
  }
  if (auditUser_ >= 0) {
    row.setDefault(auditUser_, request_.userId);
  }
  if (auditTime_ >= 0) {
    row.setDefault(auditTime_, now_);
  }
  for (qsizetype i = 0; i < cellSlots_.size(); ++i) {
    const ColumnInfo* column = columns_.cells.at(i).column;
    if (column->notNull && row.isNull(cellSlots_.at(i))) {
      fail(columns_.cells.at(i).fileName, QStringLiteral("липсва стойност за %1").arg(column->name));
    }
  }
  if (completion_) {
    try {
      completion_->complete(row);
    } catch (const CompletionError& error) {
      fail(error.column(), QString::fromUtf8(error.what()));
    }
  }
}

void TableLoader::insert(RowInserter& inserter, const LoadRow& row)
{
  try {
    inserter.insert(row.values());
  } catch (const StoreError& error) {
    if (error.kind() != StoreError::Kind::Constraint) {
      throw;
    }
    throw LoadError(QStringLiteral("%1, ред %2: записът нарушава правило на таблица %3 (%4)")
        .arg(request_.fileName).arg(reader_.line()).arg(table_.name, QString::fromUtf8(error.what()).section(u'(', 0, 0)
        .trimmed()));
  }
}

}  // namespace

LoadResult bulkLoad(Connection& connection, const LoadRequest& request, QByteArrayView csv)
{
  Transaction transaction(connection);
  try {
    TableLoader loader(connection, request, csv);
    const LoadResult result = loader.run();
    transaction.commit();
    return result;
  } catch (const CsvError& error) {
    throw LoadError(QStringLiteral("%1, ред %2: %3")
        .arg(request.fileName).arg(error.line()).arg(QString::fromUtf8(error.what())));
  }
}

}  // namespace kalvor::server
