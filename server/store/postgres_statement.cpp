#include "server/store/postgres_statement.h"

#include <algorithm>
#include <charconv>
#include <span>

namespace kalvor::server {

namespace {

// Types of PostgreSQL, whose numbers never change.
constexpr Oid boolType = 16;
constexpr Oid blobType = 17;
constexpr Oid numericType = 1700;
constexpr Oid integerTypes[] = {20, 21, 23, 26};
constexpr Oid realTypes[] = {700, 701};

bool isOneOf(Oid type, std::span<const Oid> types) { return std::find(types.begin(), types.end(), type) != types.end(); }

qint64 wholeNumber(std::string_view text)
{
  qint64 number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return text == "t" ? 1 : number;
}

double realNumber(std::string_view text)
{
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

PostgresStatement::PostgresStatement(std::shared_ptr<PostgresSession> session, const QString& sql, StatementUse use)
    : session_(std::move(session)), prepared_(session_->prepare(sql, use)), values_(size_t(prepared_->translated.parameters))
{
}

void PostgresStatement::bindText(int index, const QByteArray& bytes, bool binary)
{
  if (index < 0 || size_t(index) >= values_.size()) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("no parameter %1 in: %2").arg(index).arg(prepared_->sql.left(2000)));
  }
  PostgresValue& value = values_[size_t(index)];
  value = {bytes, false, binary};
  if (!binary && bytes.contains('\0')) {
    // No text in PostgreSQL has this character: what looks for one finds nothing, and none can be written.
    if (!prepared_->translated.reads) {
      throw StoreError(StoreError::Kind::Constraint, QStringLiteral("a text with the character 0"));
    }
    value.bytes.replace('\0', QByteArray("\xEF\xBF\xBE"));
  }
}

void PostgresStatement::bind(int index, const Variant& value)
{
  switch (value.isValid() ? value.typeId() : int(QMetaType::UnknownType)) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
      bindText(index, {});
      values_[size_t(index)].isNull = true;
      break;
    case QMetaType::Bool: bindText(index, value.toBool() ? "1" : "0"); break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: bindText(index, QByteArray::number(value.toLongLong())); break;
    case QMetaType::Double: bindAmount(index, value.toDouble()); break;
    case QMetaType::QString: bindText(index, value.toString().toUtf8()); break;
    case QMetaType::QDate: bindText(index, storedText(value.toDate()).toUtf8()); break;
    case QMetaType::QTime: bindText(index, value.toTime().toString(QStringLiteral("HH:mm:ss")).toUtf8()); break;
    case QMetaType::QDateTime: bindText(index, storedText(value.toDateTime()).toUtf8()); break;
    case QMetaType::QByteArray: bindText(index, value.toByteArray(), true); break;
    default:
      throw StoreError(StoreError::Kind::Other, QStringLiteral("a value of type %1 cannot be stored")
          .arg(QLatin1StringView(value.typeName())));
  }
}

void PostgresStatement::bindAmount(int index, double value) { bindText(index, QByteArray::number(scaled(value))); }

bool PostgresStatement::step()
{
  if (!result_) {
    result_ = session_->execute(prepared_, values_);
    row_ = -1;
  }
  if (row_ + 1 >= PQntuples(result_.get())) {
    return false;
  }
  ++row_;
  return true;
}

void PostgresStatement::reset()
{
  result_.reset();
  row_ = -1;
  std::fill(values_.begin(), values_.end(), PostgresValue());
}

PostgresStatement::Shape PostgresStatement::shapeOf(int index) const
{
  const Oid type = prepared_->columns.at(index).type;
  if (type == numericType) {
    // Sums of whole numbers come as numeric too.
    return row_ >= 0 && utf8(index).find('.') != std::string_view::npos ? Shape::Real : Shape::Integer;
  }
  if (type == boolType || isOneOf(type, integerTypes)) {
    return Shape::Integer;
  }
  return isOneOf(type, realTypes) ? Shape::Real : type == blobType ? Shape::Blob : Shape::Text;
}

FieldDef PostgresStatement::column(int index) const
{
  const PostgresColumn& source = prepared_->columns.at(index);
  FieldDef field;
  field.name = source.name;
  field.origin = source.origin;
  field.size = source.declared.size;
  field.type = dataTypeOf(source.declared.type);
  if (source.declared.type == StoredType::None) {
    constexpr DataType types[] = {DataType::LargeInt, DataType::Float, DataType::Blob, DataType::WideString};
    field.type = types[int(shapeOf(index))];
  }
  return field;
}

bool PostgresStatement::isNull(int index) const { return row_ < 0 || PQgetisnull(result_.get(), row_, index) != 0; }

std::string_view PostgresStatement::utf8(int index) const
{
  return row_ < 0 ? std::string_view()
                  : std::string_view(PQgetvalue(result_.get(), row_, index), size_t(PQgetlength(result_.get(), row_, index)));
}

qint64 PostgresStatement::integer(int index) const { return wholeNumber(utf8(index)); }
double PostgresStatement::real(int index) const { return realNumber(utf8(index)); }

QByteArray PostgresStatement::blob(int index) const
{
  const std::string_view hex = utf8(index);
  return hex.size() < 2 ? QByteArray() : QByteArray::fromHex(QByteArray::fromRawData(hex.data() + 2, qsizetype(hex.size() - 2)));
}

QString PostgresStatement::text(int index) const
{
  const std::string_view bytes = utf8(index);
  return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

Variant PostgresStatement::value(int index) const
{
  if (isNull(index)) {
    return {};
  }
  switch (prepared_->columns.at(index).declared.type) {
    case StoredType::Integer: return qlonglong(integer(index));
    case StoredType::Boolean: return integer(index) != 0;
    case StoredType::Amount: return real(index) / double(amountScale);
    case StoredType::Text: return text(index);
    case StoredType::Date: return storedDate(utf8(index));
    case StoredType::Timestamp: return QDateTime(storedDate(utf8(index)), storedTime(utf8(index)));
    case StoredType::Blob: return blob(index);
    case StoredType::None: break;
  }
  switch (shapeOf(index)) {
    case Shape::Integer: return qlonglong(integer(index));
    case Shape::Real: return real(index);
    case Shape::Blob: return blob(index);
    case Shape::Text: break;
  }
  return text(index);
}

void PostgresStatement::appendRowTo(RecordSet& records) const
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

void PostgresStatement::appendCellTo(Column& column, DataType type, int index) const
{
  if (isNull(index)) {
    column.appendNull();
    return;
  }
  switch (storageOf(type)) {
    case StorageKind::Text: column.appendUtf8(utf8(index)); return;
    case StorageKind::Blob: column.appendBlob(blob(index)); return;
    case StorageKind::Real: {
      const bool amount = prepared_->columns.at(index).declared.type == StoredType::Amount;
      column.appendReal(real(index) / (amount ? double(amountScale) : 1.0));
      return;
    }
    case StorageKind::Integer: break;
  }
  if (!isDateType(type)) {
    column.appendInteger(integer(index));
  } else if (const auto number = storedDateNumber(utf8(index), type)) {
    column.appendInteger(*number);
  } else {
    column.appendNull();
  }
}

}  // namespace kalvor::server
