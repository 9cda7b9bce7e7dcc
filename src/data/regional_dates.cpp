// Dates and times as Bulgarians write and read them.
#include <QRegularExpression>

#include "data/regional.h"

namespace kalvor {

namespace {

struct PicturePart {
  char16_t letter;  // lower case; 0 = literal
  qsizetype count;
  QString literal;
};

QList<PicturePart> datePictureParts(const QString& picture)
{
  QList<PicturePart> parts;
  for (qsizetype i = 0; i < picture.size();) {
    const QChar c = picture[i];
    if (c == u'"' || c == u'\'') {
      const qsizetype end = picture.indexOf(c, i + 1);
      parts.append({0, 0, picture.mid(i + 1, end < 0 ? -1 : end - i - 1)});
      i = end < 0 ? picture.size() : end + 1;
      continue;
    }
    const QChar letter = c.toLower();
    qsizetype run = 1;
    if (QStringView(u"dmyhnsz").contains(letter)) {
      while (i + run < picture.size() && picture[i + run].toLower() == letter)
        ++run;
      parts.append({letter.unicode(), run, QString()});
    } else {
      parts.append({0, 0, QString(c)});
    }
    i += run;
  }
  return parts;
}

// "m" is a minute after an hour or before a second, a month everywhere else.
void tellMinutesFromMonths(QList<PicturePart>& parts)
{
  const auto neighbour = [&parts](qsizetype from, int step) -> char16_t {
    for (qsizetype i = from + step; i >= 0 && i < parts.size(); i += step)
      if (parts[i].letter)
        return parts[i].letter;
    return 0;
  };
  for (qsizetype i = 0; i < parts.size(); ++i)
    if (parts[i].letter == u'm' && (neighbour(i, -1) == u'h' || neighbour(i, 1) == u's'))
      parts[i].letter = u'n';
}

QString padded(int value, qsizetype width)
{
  return QString::number(value).rightJustified(width, u'0');
}

QString partText(const PicturePart& part, const QDateTime& when)
{
  static const char16_t* const months[] = {u"януари", u"февруари", u"март", u"април", u"май", u"юни",
                                           u"юли", u"август", u"септември", u"октомври", u"ноември", u"декември"};
  static const char16_t* const days[] = {u"понеделник", u"вторник", u"сряда", u"четвъртък", u"петък", u"събота",
                                         u"неделя"};
  const QDate date = when.date();
  const QTime time = when.time();
  switch (part.letter) {
    case u'd':
      if (part.count < 3)
        return padded(date.day(), part.count);
      return QString::fromUtf16(days[date.dayOfWeek() - 1]).left(part.count == 3 ? 2 : -1);
    case u'm':
      if (part.count < 3)
        return padded(date.month(), part.count);
      return QString::fromUtf16(months[date.month() - 1]).left(part.count == 3 ? 3 : -1);
    case u'y': return part.count < 3 ? padded(date.year() % 100, 2) : padded(date.year(), 4);
    case u'h': return padded(time.hour(), part.count);
    case u'n': return padded(time.minute(), part.count);
    case u's': return padded(time.second(), part.count);
    case u'z': return padded(time.msec(), 3);
    default: return part.literal;
  }
}

int fullYear(QStringView year)
{
  const int value = year.toInt();
  return year.size() <= 2 ? 2000 + value : value;
}

std::optional<QTime> parseTimeOfDay(const QString& text)
{
  static const QRegularExpression form(
      QStringLiteral("^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2})(?:[.,](\\d{1,3}))?)?$"));
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch())
    return {};
  const int milliseconds = match.captured(4).leftJustified(3, u'0').toInt();
  const QTime time(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(), milliseconds);
  return time.isValid() ? std::optional(time) : std::nullopt;
}

}  // namespace

QString dateText(QDate date)
{
  return date.isValid() ? date.toString(u"dd.MM.yyyy") : QString();
}

QString dateTimeText(const QDateTime& when)
{
  if (!when.date().isValid())
    return {};
  const QString date = dateText(when.date());
  const QTime time = when.time();
  return time.msecsSinceStartOfDay() / 1000 == 0 ? date : date + u' ' + time.toString(u"hh:mm:ss");
}

QString formatDateTime(const QDateTime& when, const QString& picture)
{
  if (!when.date().isValid())
    return {};
  QList<PicturePart> parts = datePictureParts(picture);
  tellMinutesFromMonths(parts);
  QString text;
  for (const PicturePart& part : std::as_const(parts))
    text += partText(part, when);
  return text;
}

std::optional<QDate> parseDate(const QString& text)
{
  static const QRegularExpression dayFirst(QStringLiteral("^(\\d{1,2})([./-])(\\d{1,2})\\2(\\d{4}|\\d{2})\\.?$"));
  static const QRegularExpression yearFirst(QStringLiteral("^(\\d{4})(-?)(\\d{2})\\2(\\d{2})$"));
  const QString trimmed = text.trimmed();
  QDate date;
  if (const QRegularExpressionMatch match = dayFirst.match(trimmed); match.hasMatch())
    date = QDate(fullYear(match.capturedView(4)), match.captured(3).toInt(), match.captured(1).toInt());
  else if (const QRegularExpressionMatch other = yearFirst.match(trimmed); other.hasMatch())
    date = QDate(other.captured(1).toInt(), other.captured(3).toInt(), other.captured(4).toInt());
  return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QDateTime> parseDateTime(const QString& text)
{
  static const QRegularExpression parted(QStringLiteral("^(\\S+?)(?:\\s+|T)(\\S+)$"));
  const QString trimmed = text.trimmed();
  if (const std::optional<QDate> date = parseDate(trimmed))
    return QDateTime(*date, QTime(0, 0));
  const QRegularExpressionMatch match = parted.match(trimmed);
  if (!match.hasMatch())
    return {};
  const std::optional<QDate> date = parseDate(match.captured(1));
  const std::optional<QTime> time = parseTimeOfDay(match.captured(2));
  if (!date || !time)
    return {};
  return QDateTime(*date, *time);
}

}  // namespace kalvor
