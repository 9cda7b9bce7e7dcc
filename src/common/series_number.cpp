#include "common/series_number.h"

#include <limits>

#include "session/error_log.h"

namespace kalvor {
namespace {

struct DigitSpan {
  qsizetype start = 0;
  qsizetype size = 0;
};

bool isDecimalDigit(QChar c) { return c >= u'0' && c <= u'9'; }

// From the leftmost digit to the rightmost one, whatever stands between.
DigitSpan GetIntPosition(const QString& text)
{
  qsizetype start = 0;
  qsizetype end = text.size();
  while (start < end && !isDecimalDigit(text.at(start)))
    ++start;
  while (end > start && !isDecimalDigit(text.at(end - 1)))
    --end;
  return {start, end - start};
}

qint64 spanNumber(const QString& text, DigitSpan span)
{
  const QString digits = text.mid(span.start, qMax<qsizetype>(0, span.size));
  bool ok = !digits.isEmpty();
  for (const QChar c : digits)
    ok = ok && isDecimalDigit(c);
  const qint64 value = ok ? digits.toLongLong(&ok) : 0;
  if (!ok)
    throw DataError(QStringLiteral("\"%1\" не съдържа номер.").arg(text));
  return value;
}

qint64 increased(qint64 value, int step)
{
  if (step > 0 ? value > std::numeric_limits<qint64>::max() - step : value + step < 0)
    throw DataError(QStringLiteral("Номерът %1 не може да бъде променен с %2.").arg(value).arg(step));
  return value + step;
}

QString ReplaceNoText(const QString& text, DigitSpan span, const QString& prefix, qint64 value)
{
  return text.left(span.start - prefix.size()) + prefix +
         QString::number(value).rightJustified(span.size, u'0') + text.mid(span.start + span.size);
}

}  // namespace

bool IncSeriesNo(QString& number, const QString& maximum, const QString& prefix, int step, bool prefixed)
{
  bool fits = false;
  loggingErrors(QStringLiteral("rdmKalvor.IncSeriesNo"), [&] {
    const QString kept = prefixed ? prefix : QString();
    DigitSpan span = GetIntPosition(number);
    span = {span.start + kept.size(), span.size - kept.size()};
    const qint64 next = increased(spanNumber(number, span), step);
    number = ReplaceNoText(number, span, kept, next);
    fits = spanNumber(maximum, GetIntPosition(maximum)) >= next;
  });
  return fits;
}

}  // namespace kalvor
