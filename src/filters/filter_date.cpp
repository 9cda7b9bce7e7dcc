// Date shorthand: 15, 1501, 15.1, 15/01/2024, 150124, 20240115, +3d.
#include <QDate>

#include "filters/filter_expression.h"
#include "platform/ports.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

struct DateParts {
  QString day;
  QString month;
  QString year;
};

QString twoDigits(const QString& text) { return text.size() == 1 ? u'0' + text : text; }

QString currentYearText() { return QString::number(systemClock().today().year()).rightJustified(4, u'0'); }

QString currentMonthText() { return twoDigits(QString::number(systemClock().today().month())); }

QString withoutQuotes(const QString& text)
{
  return text.size() >= 2 && text.startsWith(u'\'') && text.endsWith(u'\'') ? text.mid(1, text.size() - 2) : text;
}

bool atSecondOrThird(qsizetype index) { return index == 1 || index == 2; }

// A separator stands behind the day. Nothing: the rest is no month or year.
std::optional<DateParts> readSeparated(const QString& text, QChar separator)
{
  const qsizetype first = text.indexOf(separator);
  const QString rest = text.mid(first + 1);
  DateParts parts{twoDigits(text.left(first)), {}, currentYearText()};
  const qsizetype second = rest.indexOf(separator);
  if (atSecondOrThird(second)) {
    parts.month = twoDigits(rest.left(second));
    parts.year = rest.mid(second + 1);
    return parts.year.size() == 2 || parts.year.size() == 4 ? std::optional(parts) : std::nullopt;
  }
  if (rest.size() > 2)
    return std::nullopt;
  parts.month = twoDigits(rest);  // empty is no month, and found out with the date
  return parts;
}

std::optional<DateParts> readByLength(const QString& text)
{
  switch (text.size()) {
    case 1:
    case 2: return DateParts{twoDigits(text), currentMonthText(), currentYearText()};
    case 3:
    case 4: return DateParts{text.left(2), text.mid(2), currentYearText()};
    case 6:
    case 8: return DateParts{text.left(2), text.mid(2, 2), text.mid(4)};
    default: return std::nullopt;
  }
}

std::optional<DateParts> readDate(QString text)
{
  const QChar separator = text.contains(u'/') ? u'/' : text.contains(u'-') ? u'-' : u'.';
  if (const QString plain = withoutQuotes(text); plain.size() == 8 && !plain.contains(separator))
    return DateParts{plain.mid(6, 2), plain.mid(4, 2), plain.left(4)};
  text = text.left(10);
  if (const qsizetype blank = text.indexOf(u' '); blank >= 0)
    text.truncate(blank);
  if (atSecondOrThird(text.indexOf(separator)))
    return readSeparated(text, separator);
  return readByLength(text);
}

int dateNumber(const QString& text)
{
  for (const QChar c : text)
    if (c < u'0' || c > u'9')
      return -1;
  return text.isEmpty() ? -1 : text.toInt();
}

bool isRealDate(const DateParts& parts)
{
  int year = dateNumber(parts.year);
  if (parts.year.size() == 2 && year >= 0)
    year += 2000;
  return year > 0 && QDate::isValid(year, dateNumber(parts.month), dateNumber(parts.day));
}

}  // namespace

QString GenerateDate(const QString& text, bool convert)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.GenerateDate"), [&]() -> QString {
    QString intervalText;
    if (GenerateIntervalData(text, intervalText) == 0)
      return convert ? intervalText : text;
    const std::optional<DateParts> parts = readDate(text.trimmed());
    if (!parts)
      return {};
    if (!isRealDate(*parts))
      throw DataError(QStringLiteral("\"%1\" не е дата").arg(text));
    return parts->year + parts->month + parts->day;
  });
}

}  // namespace kalvor
