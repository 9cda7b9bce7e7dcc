#include "import/record_lines.h"

#include <algorithm>
#include <array>

#include "common/delimited_list.h"
#include "data/data_error.h"
#include "filters/filter_expression.h"
#include "forms/messages.h"

namespace kalvor {
namespace {

bool isRecordNumber(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::Bool: case QMetaType::Int: case QMetaType::LongLong: case QMetaType::Double: return true;
    default: return false;
  }
}

// Values of different kinds are equal when they read the same: the number 5 and the text "5".
bool equalRecordValues(const Variant& left, const Variant& right)
{
  if (isNull(left) || isNull(right))
    return false;
  if (isRecordNumber(left) && isRecordNumber(right))
    return left.toDouble() == right.toDouble() && left.toLongLong() == right.toLongLong();
  const QString text = variantText(left);
  return !text.isEmpty() && text == variantText(right);
}

bool lineHolds(const TRecordLine& line, const QString& name, const Variant& value)
{
  return std::any_of(line.begin(), line.end(), [&](const TFieldSet& field) {
    return field.FieldName == name && equalRecordValues(field.Value, value);
  });
}

}  // namespace

Variant GetRecLineFldValue(const TRecordLine& line, const QString& name)
{
  const auto field = std::find_if(line.begin(), line.end(), [&](const TFieldSet& f) { return f.FieldName == name; });
  return field == line.end() ? Variant() : field->Value;
}

bool SetRecLineFldValue(TRecordLine& line, const QString& name, const Variant& value)
{
  for (TFieldSet& field : line)
    if (field.FieldName.compare(name, Qt::CaseInsensitive) == 0) {
      field.Value = value;
      return true;
    }
  return false;
}

void DeleteCell(TSelectionList& list, int index)
{
  if (index >= 0 && index < list.size())
    list.removeAt(index);
}

bool FindInArray(const TSelectionList& list, const QString& names, const VariantArray& values, bool all, int& index)
{
  const QString separator = QStringLiteral(";");
  const int nameCount = GetItemsCountInList(names, separator);
  for (qsizetype i = 0; i < list.size(); ++i) {
    int matched = 0;
    while (matched < nameCount && lineHolds(list[i], GetItemAtPos(names, separator, matched), values.value(matched)))
      ++matched;
    if (matched == nameCount || (!all && matched > 0)) {
      index = int(i);
      return true;
    }
  }
  return false;
}

QDateTime GenerateDateTime(const QString& value, const QString& pattern)
{
  constexpr std::u16string_view letters = u"ymdhns";
  const QString expanded = GenerateDate(value, true);
  const QString picture = pattern.toLower();
  std::array<QString, letters.size()> parts;
  for (qsizetype i = 0; i < qMin(picture.size(), expanded.size()); ++i)
    if (const size_t part = letters.find(picture[i].unicode()); part != letters.npos)
      parts[part] += expanded[i];
  const QDate date(parts[0].toInt(), parts[1].toInt(), parts[2].toInt());
  const QTime time(parts[3].toInt(), parts[4].toInt(), parts[5].toInt());
  if (!date.isValid() || !time.isValid())
    throw DataError(_err_NotValidDate + value);
  return QDateTime(date, time);
}

}  // namespace kalvor
