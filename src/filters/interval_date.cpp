// Relative dates: a signed number of days, months or years from today.
#include <QDate>

#include "data/data_error.h"
#include "filters/filter_expression.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

enum class IntervalUnit : quint8 { None, Day, Month, Year };

IntervalUnit intervalUnit(QChar c)
{
  switch (c.unicode()) {
    case u'd': case u'D': case u'д': case u'Д': return IntervalUnit::Day;
    case u'm': case u'M': case u'м': case u'М': return IntervalUnit::Month;
    case u'y': case u'Y': case u'г': case u'Г': return IntervalUnit::Year;
    default: return IntervalUnit::None;
  }
}

constexpr int longestInterval = 7;  // digits; more leaves every calendar

struct Interval {
  int count = 0;
  IntervalUnit unit = IntervalUnit::None;
};

std::optional<Interval> readInterval(const QString& text)
{
  Interval interval;
  int digits = 0;
  const bool signedText = text.startsWith(u'+') || text.startsWith(u'-');
  for (qsizetype i = signedText ? 1 : 0; i < text.size(); ++i) {
    const QChar c = text.at(i);
    if (c >= u'0' && c <= u'9') {
      if (++digits > longestInterval)
        return std::nullopt;
      interval.count = interval.count * 10 + c.digitValue();
    } else if (interval.unit == IntervalUnit::None && intervalUnit(c) != IntervalUnit::None) {
      interval.unit = intervalUnit(c);
    } else {
      return std::nullopt;
    }
  }
  if (digits == 0 || interval.unit == IntervalUnit::None)
    return std::nullopt;
  if (text.startsWith(u'-'))
    interval.count = -interval.count;
  return interval;
}

QDate moved(QDate date, const Interval& interval)
{
  switch (interval.unit) {
    case IntervalUnit::Day: return date.addDays(interval.count);
    case IntervalUnit::Month: return date.addMonths(interval.count);
    case IntervalUnit::Year: return date.addYears(interval.count);
    case IntervalUnit::None: break;
  }
  return {};
}

}  // namespace

int GenerateIntervalData(const QString& text, QString& dateText)
{
  const std::optional<Interval> interval = readInterval(text);
  if (!interval)
    return -1;
  const QDate date = moved(systemClock().today(), *interval);
  if (!date.isValid() || date.year() < 1 || date.year() > 9999)
    return -1;
  dateText = date.toString(QStringLiteral("yyyyMMdd"));
  return 0;
}

QDate ConvertIntervalToDate(const QString& text)
{
  QString dateText;
  if (GenerateIntervalData(text, dateText) != 0)
    throw DataError(QStringLiteral("Error converting interval %1 to DateTime").arg(text));
  return QDate::fromString(dateText, QStringLiteral("yyyyMMdd"));
}

}  // namespace kalvor
