// Conditions of a lookup as a filter: texts become values of the type that their code names.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "data/data_error.h"
#include "data/regional.h"
#include "filters/filter_expression.h"
#include "import/import_fields.h"
#include "import/messages.h"

namespace kalvor {
namespace {

enum class ConditionType : quint8 { Text, Integer, Real, Currency, DateTime, Boolean };

struct ConditionTypeCode {
  int code;
  ConditionType type;
  qint64 least = std::numeric_limits<qint64>::min();
  qint64 greatest = std::numeric_limits<qint64>::max();
};

// The codes of the automation variant; one that is not here is a text.
constexpr std::array conditionTypeCodes{
    ConditionTypeCode{2, ConditionType::Integer, -32768, 32767},
    ConditionTypeCode{3, ConditionType::Integer, -2147483648LL, 2147483647LL},
    ConditionTypeCode{4, ConditionType::Real},
    ConditionTypeCode{5, ConditionType::Real},
    ConditionTypeCode{6, ConditionType::Currency},
    ConditionTypeCode{7, ConditionType::DateTime},
    ConditionTypeCode{8, ConditionType::Text},
    ConditionTypeCode{11, ConditionType::Boolean},
    ConditionTypeCode{14, ConditionType::Real},
    ConditionTypeCode{16, ConditionType::Integer, -128, 127},
    ConditionTypeCode{17, ConditionType::Integer, 0, 255},
    ConditionTypeCode{18, ConditionType::Integer, 0, 65535},
    ConditionTypeCode{19, ConditionType::Integer, 0, 4294967295LL},
    ConditionTypeCode{20, ConditionType::Integer},
    ConditionTypeCode{21, ConditionType::Integer, 0},
    ConditionTypeCode{256, ConditionType::Text},
    ConditionTypeCode{258, ConditionType::Text},
};

[[noreturn]] void refuseConditionValue(const QString& text) { throw DataError(_err_ConditionValue + text); }

Variant integerCondition(const QString& text, const ConditionTypeCode& code)
{
  bool isNumber = false;
  const qint64 value = text.toLongLong(&isNumber);
  if (!isNumber || value < code.least || value > code.greatest)
    refuseConditionValue(text);
  return value;
}

Variant realCondition(const QString& text, const TFormatSettings& settings)
{
  try {
    return ParseAsFieldType(text, DataType::Float, settings);
  } catch (const DataError&) {
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? value : (refuseConditionValue(text), 0);
  }
}

Variant dateCondition(const QString& text, const TFormatSettings& settings)
{
  try {
    return ParseAsFieldType(text, DataType::DateTime, settings);
  } catch (const DataError&) {
    const std::optional<QDateTime> value = parseDateTime(text);
    return value ? *value : (refuseConditionValue(text), QDateTime());
  }
}

Variant booleanCondition(const QString& text)
{
  const QString word = text.toLower();
  if (word == u"1" || word == u"-1" || word == u"true")
    return true;
  return word == u"0" || word == u"false" ? false : (refuseConditionValue(text), false);
}

}  // namespace

Variant conditionValue(const QString& text, int typeCode, const TFormatSettings& settings)
{
  constexpr double currencyUnits = 10'000;
  const auto code = std::find_if(conditionTypeCodes.begin(), conditionTypeCodes.end(),
                                 [typeCode](const ConditionTypeCode& known) { return known.code == typeCode; });
  if (code == conditionTypeCodes.end() || code->type == ConditionType::Text)
    return text;
  const QString trimmed = text.trimmed();
  // No number, date or flag: null, to which no record is equal.
  if (trimmed.isEmpty())
    return {};
  switch (code->type) {
    case ConditionType::Integer: return integerCondition(trimmed, *code);
    case ConditionType::Real: return realCondition(trimmed, settings);
    case ConditionType::Currency:
      return std::round(realCondition(trimmed, settings).toDouble() * currencyUnits) / currencyUnits;
    case ConditionType::DateTime: return dateCondition(trimmed, settings);
    default: return booleanCondition(trimmed);
  }
}

void AddAdvFilter(FilterArray& filter, const QString& conditions, const TFormatSettings& settings)
{
  FilterArray added;
  for (const QString& part : conditions.split(QStringLiteral("##"))) {
    if (part.trimmed().isEmpty())
      continue;
    const QStringList items = part.split(u'|');
    if (!added.isEmpty())
      added.last().conjunction = QStringLiteral("AND");
    added.append(FilterRow{items.value(0), items.value(1),
                           conditionValue(items.value(3), items.value(2).trimmed().toInt(), settings), items.value(4),
                           {}});
  }
  if (!added.isEmpty())
    filter = GetAllFilter(added, filter);
}

}  // namespace kalvor
