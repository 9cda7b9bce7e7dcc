#include "data/value_matcher.h"

#include "data/value_conversion.h"

namespace kalvor {

ValueMatcher::ValueMatcher(DataType type, const Variant& wanted, LocateOptions options) : options_(options)
{
  const std::optional<Variant> value = convertedValue(type, wanted, TextForm::Invariant);
  if (!value)
    return;
  if (isNull(*value)) {
    kind_ = Kind::Null;
    return;
  }
  switch (storageOf(type)) {
    case StorageKind::Integer:
      kind_ = Kind::Integer;
      integer_ = storedInteger(type, *value);
      // A fraction equals no whole number, though it would round to one.
      if (wanted.typeId() == QMetaType::Double && isIntegerType(type) && double(integer_) != wanted.toDouble())
        kind_ = Kind::Nothing;
      break;
    case StorageKind::Real:
      kind_ = Kind::Real;
      real_ = value->toDouble();
      break;
    case StorageKind::Text:
      kind_ = Kind::Text;
      text_ = value->toString();
      break;
    case StorageKind::Blob:
      kind_ = Kind::Blob;
      blob_ = value->toByteArray();
      break;
  }
}

bool ValueMatcher::matchesText(QStringView text) const
{
  const Qt::CaseSensitivity sensitivity = options_.caseInsensitive ? Qt::CaseInsensitive : Qt::CaseSensitive;
  if (options_.partialKey)
    return text.startsWith(text_, sensitivity);
  return text.size() == text_.size() && text.compare(text_, sensitivity) == 0;
}

bool ValueMatcher::matches(const Column& column, qsizetype row) const
{
  if (kind_ == Kind::Nothing)
    return false;
  if (column.isNull(row))
    return kind_ == Kind::Null;
  switch (kind_) {
    case Kind::Integer: return column.integerAt(row) == integer_;
    case Kind::Real: return column.realAt(row) == real_;
    case Kind::Text: return matchesText(column.textAt(row));
    case Kind::Blob: return column.blobAt(row) == blob_;
    default: return false;
  }
}

}  // namespace kalvor
