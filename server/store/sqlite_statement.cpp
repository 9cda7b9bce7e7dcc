#include "server/store/sqlite_statement.h"

namespace kalvor::server {

SqliteStatement::SqliteStatement(std::shared_ptr<SqliteHandle> handle, QByteArray sql, StatementUse use)
    : handle_(std::move(handle)), sql_(std::move(sql)), use_(use), statement_(handle_->take(sql_, use_))
{
}

SqliteStatement::~SqliteStatement() { handle_->giveBack(sql_, use_, statement_); }

void SqliteStatement::bind(int index, const Variant& value)
{
  const int at = index + 1;
  int code = SQLITE_OK;
  const auto bindText = [&](const QString& text) {
    const QByteArray bytes = text.toUtf8();
    code = sqlite3_bind_text(statement_, at, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
  };
  switch (value.isValid() ? value.typeId() : int(QMetaType::UnknownType)) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr: code = sqlite3_bind_null(statement_, at); break;
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: code = sqlite3_bind_int64(statement_, at, value.toLongLong()); break;
    case QMetaType::Double: bindAmount(index, value.toDouble()); return;
    case QMetaType::QString: bindText(value.toString()); break;
    case QMetaType::QDate: bindText(storedText(value.toDate())); break;
    case QMetaType::QTime: bindText(value.toTime().toString(QStringLiteral("HH:mm:ss"))); break;
    case QMetaType::QDateTime: bindText(storedText(value.toDateTime())); break;
    case QMetaType::QByteArray: {
      const QByteArray bytes = value.toByteArray();
      code = bytes.isEmpty() ? sqlite3_bind_zeroblob(statement_, at, 0)
                             : sqlite3_bind_blob64(statement_, at, bytes.constData(), sqlite3_uint64(bytes.size()),
                                                   SQLITE_TRANSIENT);
      break;
    }
    default:
      throw StoreError(StoreError::Kind::Other, QStringLiteral("a value of type %1 cannot be stored")
          .arg(QLatin1StringView(value.typeName())));
  }
  if (code != SQLITE_OK) {
    handle_->fail(code, sql_);
  }
}

void SqliteStatement::bindAmount(int index, double value)
{
  const int code = sqlite3_bind_int64(statement_, index + 1, scaled(value));
  if (code != SQLITE_OK) {
    handle_->fail(code, sql_);
  }
}

bool SqliteStatement::step()
{
  const int code = handle_->step(statement_, use_);
  if (code != SQLITE_ROW && code != SQLITE_DONE) {
    handle_->fail(code, sql_);
  }
  return code == SQLITE_ROW;
}

void SqliteStatement::reset()
{
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

int SqliteStatement::columnCount() const { return sqlite3_column_count(statement_); }

DeclaredType SqliteStatement::typeOf(int index) const
{
  if (declared_.isEmpty()) {
    for (int i = 0; i < columnCount(); ++i) {
      const QString name = QString::fromUtf8(sqlite3_column_name(statement_, i));
      const qsizetype colon = name.indexOf(u':');
      const QString type = colon < 0 ? QString::fromUtf8(sqlite3_column_decltype(statement_, i)) : name.mid(colon + 1);
      declared_.append(parseDeclaredType(type));
    }
  }
  return declared_.at(index);
}

FieldDef SqliteStatement::column(int index) const
{
  FieldDef field;
  field.name = QString::fromUtf8(sqlite3_column_name(statement_, index)).section(u':', 0, 0);
  const DeclaredType declared = typeOf(index);
  field.type = dataTypeOf(declared.type);
  field.size = declared.size;
  if (declared.type == StoredType::None) {
    switch (sqlite3_column_type(statement_, index)) {
      case SQLITE_INTEGER: field.type = DataType::LargeInt; break;
      case SQLITE_FLOAT: field.type = DataType::Float; break;
      case SQLITE_BLOB: field.type = DataType::Blob; break;
      default: break;
    }
  }
  const QString table = QString::fromUtf8(sqlite3_column_table_name(statement_, index));
  if (!table.isEmpty()) {
    field.origin = table + u'.' + QString::fromUtf8(sqlite3_column_origin_name(statement_, index));
  }
  return field;
}

bool SqliteStatement::isNull(int index) const { return sqlite3_column_type(statement_, index) == SQLITE_NULL; }
qint64 SqliteStatement::integer(int index) const { return sqlite3_column_int64(statement_, index); }

std::string_view SqliteStatement::utf8(int index) const
{
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, index));
  return {text ? text : "", size_t(sqlite3_column_bytes(statement_, index))};
}

QString SqliteStatement::text(int index) const
{
  const std::string_view bytes = utf8(index);
  return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

Variant SqliteStatement::value(int index) const
{
  if (isNull(index)) {
    return {};
  }
  switch (typeOf(index).type) {
    case StoredType::Integer: return qlonglong(integer(index));
    case StoredType::Boolean: return integer(index) != 0;
    case StoredType::Amount: return sqlite3_column_double(statement_, index) / double(amountScale);
    case StoredType::Text: return text(index);
    case StoredType::Date: return storedDate(utf8(index));
    case StoredType::Timestamp: return QDateTime(storedDate(utf8(index)), storedTime(utf8(index)));
    default: break;
  }
  switch (sqlite3_column_type(statement_, index)) {
    case SQLITE_INTEGER: return qlonglong(integer(index));
    case SQLITE_FLOAT: return sqlite3_column_double(statement_, index);
    case SQLITE_BLOB:
      return QByteArray(static_cast<const char*>(sqlite3_column_blob(statement_, index)),
                        sqlite3_column_bytes(statement_, index));
    default: return text(index);
  }
}

void SqliteStatement::appendRowTo(RecordSet& records) const
{
  const int count = std::min(columnCount(), int(records.fields.size()));
  for (int i = 0; i < count; ++i) {
    appendCellTo(records.columns[size_t(i)], records.fields.at(i).type, i);
  }
  for (int i = count; i < records.fields.size(); ++i) {
    records.columns[size_t(i)].appendNull();
  }
  ++records.rows;
}

void SqliteStatement::appendCellTo(Column& column, DataType type, int index) const
{
  if (isNull(index)) {
    column.appendNull();
    return;
  }
  switch (storageOf(type)) {
    case StorageKind::Text: column.appendUtf8(utf8(index)); return;
    case StorageKind::Blob:
      column.appendBlob(QByteArray(static_cast<const char*>(sqlite3_column_blob(statement_, index)),
                                   sqlite3_column_bytes(statement_, index)));
      return;
    case StorageKind::Real: {
      const bool amount = typeOf(index).type == StoredType::Amount;
      column.appendReal(sqlite3_column_double(statement_, index) / (amount ? double(amountScale) : 1.0));
      return;
    }
    case StorageKind::Integer: break;
  }
  if (!isDateType(type)) {
    column.appendInteger(integer(index));
    return;
  }
  if (const auto number = storedDateNumber(utf8(index), type)) {
    column.appendInteger(*number);
  } else {
    column.appendNull();
  }
}

}  // namespace kalvor::server
