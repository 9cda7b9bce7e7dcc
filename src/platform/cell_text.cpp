#include "platform/cell_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kalvor {
namespace {

constexpr double millisecondsOfCellDay = 86'400'000;

// Day, month and year in the order of the picture; day, month, year when it lacks one of them.
QString cellDateOrder(const QString& picture)
{
  QString order;
  for (const QChar sign : picture.toLower())
    if (QStringLiteral("dmy").contains(sign) && !order.contains(sign))
      order += sign;
  return order.size() == 3 ? order : QStringLiteral("dmy");
}

// "yyyymmdd": the reader takes the parts by their widths.
bool isUnseparated(const QString& picture)
{
  const QString letters = picture.toLower();
  return letters.size() == 8 && letters.count(QStringLiteral("yyyy")) == 1 && letters.count(QStringLiteral("mm")) == 1 &&
         letters.count(QStringLiteral("dd")) == 1;
}

// The format's first section without what is only shown: quoted and escaped texts, colours, paddings.
QString formatCode(const QString& numberFormat)
{
  QString code;
  for (qsizetype i = 0; i < numberFormat.size() && numberFormat[i] != u';'; ++i) {
    const QChar sign = numberFormat[i];
    if (sign == u'"') {
      const qsizetype end = numberFormat.indexOf(u'"', i + 1);
      i = end < 0 ? numberFormat.size() : end;
    } else if (sign == u'\\' || sign == u'_' || sign == u'*') {
      ++i;
    } else {
      code += sign.toLower();
    }
  }
  return code;
}

bool isElapsedPart(const QString& bracket)
{
  return !bracket.isEmpty() && QStringLiteral("hms").contains(bracket[0]) && bracket.count(bracket[0]) == bracket.size();
}

}  // namespace

QString cellNumberText(double value, const CellTextFormat& format)
{
  constexpr double longestPlain = 1e21, smallestPlain = 1e-9;
  const double size = std::abs(value);
  if (!std::isfinite(value))
    return {};
  const bool plain = size == 0 || (size >= smallestPlain && size < longestPlain);
  std::array<char, 64> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value == 0 ? 0.0 : value,
                                 plain ? std::chars_format::fixed : std::chars_format::scientific);
  return QString::fromLatin1(text.data(), end.ptr - text.data()).replace(u'.', format.decimalSeparator);
}

QString cellDateText(QDate date, QTime time, const CellTextFormat& format)
{
  QStringList parts;
  for (const QChar part : cellDateOrder(format.datePicture))
    parts.append(date.toString(part == u'd' ? QStringLiteral("dd") : part == u'm' ? QStringLiteral("MM")
                                                                                  : QStringLiteral("yyyy")));
  QString text;
  if (date.isValid())
    text = parts.join(isUnseparated(format.datePicture) ? QString() : QString(format.dateSeparator));
  if (!date.isValid() || time.msecsSinceStartOfDay() > 0) {
    const QString clock = time.toString(time.msec() > 0 ? QStringLiteral("hh:mm:ss.zzz") : QStringLiteral("hh:mm:ss"));
    text += text.isEmpty() ? clock : u' ' + clock;
  }
  return text;
}

CellNumberKind cellNumberKind(const QString& numberFormat)
{
  const QString code = formatCode(numberFormat);
  bool isDate = false;
  for (qsizetype i = 0; i < code.size(); ++i) {
    if (code[i] == u'[') {
      const qsizetype end = code.indexOf(u']', i);
      if (end < 0)
        break;
      if (isElapsedPart(code.mid(i + 1, end - i - 1)))
        return CellNumberKind::Duration;
      i = end;
    } else {
      isDate = isDate || QStringLiteral("dmyhs").contains(code[i]);
    }
  }
  return isDate ? CellNumberKind::DateTime : CellNumberKind::Number;
}

CellNumberKind cellNumberKind(int builtInFormat)
{
  struct FormatSpan {
    int first, last;
    CellNumberKind kind;
  };
  constexpr std::array spans{FormatSpan{14, 22, CellNumberKind::DateTime}, FormatSpan{27, 36, CellNumberKind::DateTime},
                             FormatSpan{45, 45, CellNumberKind::DateTime}, FormatSpan{46, 46, CellNumberKind::Duration},
                             FormatSpan{47, 47, CellNumberKind::DateTime}, FormatSpan{50, 58, CellNumberKind::DateTime}};
  const auto span = std::find_if(spans.begin(), spans.end(), [builtInFormat](const FormatSpan& s) {
    return builtInFormat >= s.first && builtInFormat <= s.last;
  });
  return span == spans.end() ? CellNumberKind::Number : span->kind;
}

QString cellSerialText(double value, CellNumberKind kind, CellEpoch epoch, const CellTextFormat& format)
{
  constexpr double behindLastDay = 2'958'466;  // the first of January of the year 10000
  constexpr double leapDayOf1900 = 60;
  const bool isDuration = kind == CellNumberKind::Duration && value >= 1;
  if (kind == CellNumberKind::Number || isDuration || !(value >= 0 && value < behindLastDay) ||
      (epoch == CellEpoch::Year1900 && std::floor(value) == leapDayOf1900))
    return cellNumberText(value, format);
  double days = std::floor(value);
  double milliseconds = std::round((value - days) * millisecondsOfCellDay);
  if (milliseconds >= millisecondsOfCellDay) {
    milliseconds = 0;
    ++days;
  }
  const QTime time = QTime::fromMSecsSinceStartOfDay(int(milliseconds));
  if (days == 0)
    return cellDateText(QDate(), time, format);
  QDate dayZero(1904, 1, 1);
  if (epoch == CellEpoch::Year1900)
    dayZero = days < leapDayOf1900 ? QDate(1899, 12, 31) : QDate(1899, 12, 30);
  return cellDateText(dayZero.addDays(qint64(days)), time, format);
}

}  // namespace kalvor
