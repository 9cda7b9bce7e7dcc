#include "data/record_set.h"

#include "data/value_conversion.h"

namespace kalvor {

namespace {

// Row of append: the column's size. The value was converted already.
void storeConverted(Column& column, DataType type, qsizetype row, const Variant& value)
{
  const bool append = row == column.size();
  if (isNull(value)) {
    append ? column.appendNull() : column.setNull(row);
    return;
  }
  switch (column.kind()) {
    case StorageKind::Integer: {
      const qint64 stored = storedInteger(type, value);
      append ? column.appendInteger(stored) : column.setInteger(row, stored);
      break;
    }
    case StorageKind::Real: {
      const double stored = value.toDouble();
      append ? column.appendReal(stored) : column.setReal(row, stored);
      break;
    }
    case StorageKind::Text: {
      const QString stored = value.toString();
      append ? column.appendText(stored) : column.setText(row, stored);
      break;
    }
    case StorageKind::Blob: {
      const QByteArray stored = value.toByteArray();
      append ? column.appendBlob(stored) : column.setBlob(row, stored);
      break;
    }
  }
}

}  // namespace

Variant cellValue(const Column& column, DataType type, qsizetype row)
{
  if (column.isNull(row))
    return {};
  switch (column.kind()) {
    case StorageKind::Integer: return valueFromStored(type, column.integerAt(row));
    case StorageKind::Real: return column.realAt(row);
    case StorageKind::Text: return column.textAt(row).toString();
    case StorageKind::Blob: return column.blobAt(row);
  }
  return {};
}

bool appendCell(Column& column, DataType type, const Variant& value)
{
  const std::optional<Variant> converted = convertedValue(type, value, TextForm::Invariant);
  storeConverted(column, type, column.size(), converted.value_or(Variant()));
  return converted.has_value();
}

bool setCell(Column& column, DataType type, qsizetype row, const Variant& value)
{
  const std::optional<Variant> converted = convertedValue(type, value, TextForm::Invariant);
  if (converted)
    storeConverted(column, type, row, *converted);
  return converted.has_value();
}

RecordSet::RecordSet(QList<FieldDef> definitions) : fields(std::move(definitions))
{
  columns.reserve(size_t(fields.size()));
  for (const FieldDef& field : std::as_const(fields))
    columns.emplace_back(storageOf(field.type));
}

int RecordSet::indexOf(QStringView name) const
{
  for (int i = 0; i < int(fields.size()); ++i)
    if (name.compare(fields[i].name, Qt::CaseInsensitive) == 0)
      return i;
  return -1;
}

void RecordSet::appendRow(const VariantArray& values)
{
  for (int i = 0; i < int(fields.size()); ++i)
    appendCell(columns[size_t(i)], fields[i].type, values.value(i));
  ++rows;
}

}  // namespace kalvor
