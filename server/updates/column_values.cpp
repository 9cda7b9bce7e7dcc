#include "server/updates/column_values.h"

#include <QDateTime>

#include "server/queries/filter_values.h"

namespace kalvor::server {

std::optional<Variant> columnValue(const ColumnInfo& column, const Variant& value)
{
  if (isNull(value)) {
    return Variant();
  }
  if (column.type == DataType::Blob) {
    return value.typeId() == QMetaType::QByteArray ? value : Variant(variantText(value).toUtf8());
  }
  if (isTextType(column.type)) {
    const QString text = variantText(value);
    const bool storable = value.typeId() != QMetaType::QByteArray && !text.contains(QChar::Null);
    return storable ? std::optional<Variant>(text) : std::nullopt;
  }
  if (value.typeId() == QMetaType::QString && value.toString().trimmed().isEmpty()) {
    return Variant();
  }
  auto converted = filterValue(column.type, value);
  if (converted && column.type == DataType::DateTime && converted->typeId() == QMetaType::QDate) {
    return QDateTime(converted->toDate(), QTime(0, 0));
  }
  return converted;
}

bool sameColumnValue(const ColumnInfo& column, const Variant& left, const Variant& right)
{
  if (isTextType(column.type)) {
    return left.toString() == right.toString();
  }
  if (isNull(left) || isNull(right)) {
    return isNull(left) == isNull(right);
  }
  if (isRealType(column.type)) {
    return scaled(left.toDouble()) == scaled(right.toDouble());
  }
  if (column.type == DataType::DateTime) {
    const QString picture = QStringLiteral("yyyyMMddHHmmss");
    return left.toDateTime().toString(picture) == right.toDateTime().toString(picture);
  }
  if (column.type == DataType::Date) {
    return left.toDate() == right.toDate();
  }
  return column.type == DataType::Blob ? left.toByteArray() == right.toByteArray() : left.toLongLong() == right.toLongLong();
}

}  // namespace kalvor::server
