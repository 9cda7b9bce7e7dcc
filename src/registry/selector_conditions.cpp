#include "registry/selector_conditions.h"

#include <QDateTime>
#include <compare>
#include <optional>

#include "data/regional.h"

namespace kalvor {
namespace {

bool isNumberValue(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double: return true;
    default: return false;
  }
}

bool isDateValue(const Variant& value)
{
  return value.typeId() == QMetaType::QDate || value.typeId() == QMetaType::QDateTime;
}

std::optional<double> numberOf(const Variant& value)
{
  if (value.typeId() != QMetaType::QString)
    return isNumberValue(value) ? std::optional(value.toDouble()) : std::nullopt;
  bool ok = false;
  const double plain = value.toString().trimmed().toDouble(&ok);
  return ok ? std::optional(plain) : parseNumber(value.toString());
}

std::optional<qint64> momentOf(const Variant& value)
{
  std::optional<QDateTime> when;
  if (value.typeId() == QMetaType::QString)
    when = parseDateTime(value.toString());
  else if (isDateValue(value))
    when = value.toDateTime();
  if (!when || !when->isValid())
    return std::nullopt;
  constexpr qint64 millisecondsOfDay = 86'400'000;
  return when->date().toJulianDay() * millisecondsOfDay + when->time().msecsSinceStartOfDay();
}

template <class Number>
std::partial_ordering compareRead(const std::optional<Number>& left, const std::optional<Number>& right)
{
  return left && right ? std::partial_ordering(*left <=> *right) : std::partial_ordering::unordered;
}

// Unordered: a text that does not read as the other side's kind; such values only differ.
std::partial_ordering compareValues(const Variant& left, const Variant& right)
{
  if (isNumberValue(left) || isNumberValue(right))
    return compareRead(numberOf(left), numberOf(right));
  if (isDateValue(left) || isDateValue(right))
    return compareRead(momentOf(left), momentOf(right));
  return QString::compare(variantText(left), variantText(right)) <=> 0;
}

Variant emptyAsText(const Variant& value)
{
  return variantText(value).isEmpty() ? Variant(QString()) : value;
}

bool occursWithin(const Variant& left, const Variant& right)
{
  const QString text = variantText(left);
  return !text.isEmpty() && variantText(right).contains(text);
}

using ValueTest = bool (*)(const Variant&, const Variant&);
struct ConditionOperator {
  const char16_t* sign;
  ValueTest holds;
};
constexpr ConditionOperator conditionOperators[] = {
    {u">", [](const Variant& a, const Variant& b) { return std::is_gt(compareValues(a, b)); }},
    {u"<", [](const Variant& a, const Variant& b) { return std::is_lt(compareValues(a, b)); }},
    {u"=", [](const Variant& a, const Variant& b) { return std::is_eq(compareValues(a, b)); }},
    {u">=", [](const Variant& a, const Variant& b) { return std::is_gteq(compareValues(a, b)); }},
    {u"<=", [](const Variant& a, const Variant& b) { return std::is_lteq(compareValues(a, b)); }},
    {u"<>", [](const Variant& a, const Variant& b) { return std::is_neq(compareValues(a, b)); }},
    {u"LIKE", occursWithin},
};

bool rowHolds(const QString& sign, const Variant& left, const Variant& right)
{
  for (const ConditionOperator& known : conditionOperators)
    if (sign.trimmed().compare(QStringView(known.sign), Qt::CaseInsensitive) == 0)
      return known.holds(left, right);
  return false;
}

bool combined(bool soFar, const QString& conjunction, bool next)
{
  const QString word = conjunction.trimmed();
  if (word.compare(QLatin1String("AND"), Qt::CaseInsensitive) == 0)
    return soFar && next;
  if (word.compare(QLatin1String("OR"), Qt::CaseInsensitive) == 0)
    return soFar || next;
  return next;
}

}  // namespace

bool CheckCondition(const FilterArray& condition, TClientDataSet* dataSet, QObject* owner,
                    const SelectorControl* control, const SelectorValueFunction& valueOf)
{
  bool result = true;
  QString conjunction;
  for (const FilterRow& row : condition) {
    const Variant left = emptyAsText(valueOf(row.field, dataSet, control, owner));
    const Variant right = emptyAsText(valueOf(variantText(row.value), dataSet, control, owner));
    result = combined(result, conjunction, rowHolds(row.op, left, right));
    conjunction = row.conjunction;
  }
  return result;
}

int GetSelectorIndexFromCondition(const TSelectorItems& items, TClientDataSet* dataSet, QObject* owner,
                                  const SelectorControl* control, const SelectorValueFunction& valueOf)
{
  for (qsizetype i = 0; i < items.size(); ++i)
    if (CheckCondition(items[i].Condition, dataSet, owner, control, valueOf))
      return int(i);
  return -1;
}

}  // namespace kalvor
