#include "common/text_tools.h"

#include <QStringList>
#include <algorithm>
#include <limits>

#include "data/data_error.h"

namespace kalvor {

QString AddMessageToString(const QString& text, const QString& message)
{
  return text.isEmpty() ? message : text + QStringLiteral("\r\n\r\n") + message;
}

void RemoveAllSubString(QString& text, const QString& part)
{
  if (part.isEmpty())
    return;
  // Built up from the left, so that a removal's new neighbours are seen at once.
  QString kept;
  kept.reserve(text.size());
  for (const QChar c : std::as_const(text)) {
    kept += c;
    if (kept.endsWith(part))
      kept.chop(part.size());
  }
  text = kept;
}

QString EndWithDirSlash(const QString& text, QChar character)
{
  return text.endsWith(character) ? text : text + character;
}

int CompareVersions(const QString& a, const QString& b, int depth)
{
  const QStringList first = a.split(u'.');
  const QStringList second = b.split(u'.');
  qint64 difference = 0;
  for (int part = 0; part < 4 && difference == 0 && (part == 0 || part < depth); ++part)
    difference = qint64(first.value(part).trimmed().toInt()) - second.value(part).trimmed().toInt();
  return int(std::clamp<qint64>(difference, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int HexToInt(const QString& text)
{
  quint32 value = 0;
  for (const QChar c : text.toUpper()) {
    quint32 digit = 0;
    if (c >= u'0' && c <= u'9')
      digit = quint32(c.unicode() - u'0');
    else if (c >= u'A' && c <= u'F')
      digit = quint32(c.unicode() - u'A') + 10;
    else
      throw DataError(QStringLiteral("No Hex-Number"));
    value = value * 16 + digit;
  }
  return int(value);
}

}  // namespace kalvor
