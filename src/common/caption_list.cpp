#include "common/caption_list.h"

#include <algorithm>

namespace kalvor {

namespace {

bool needsQuotes(const QString& caption)
{
  return std::any_of(caption.begin(), caption.end(), [](QChar c) { return QStringView(u",;\"\r\n").contains(c); });
}

// Where the next separator outside of quotes stands; the text's size when there is none. Quotes open only at the
// beginning of an item.
qsizetype captionEnd(QStringView text, qsizetype from, QStringView separators)
{
  bool quoted = from < text.size() && text[from] == u'"';
  for (qsizetype i = quoted ? from + 1 : from; i < text.size(); ++i) {
    if (quoted && text[i] == u'"') {
      if (i + 1 < text.size() && text[i + 1] == u'"')
        ++i;
      else
        quoted = false;
    } else if (!quoted && separators.contains(text[i])) {
      return i;
    }
  }
  return text.size();
}

QString unquoted(QStringView item)
{
  QString text = item.toString();
  if (text.size() < 2 || !text.startsWith(u'"') || !text.endsWith(u'"'))
    return text;
  return text.mid(1, text.size() - 2).replace(QLatin1String("\"\""), QLatin1String("\""));
}

}  // namespace

QString captionListText(const QStringList& captions)
{
  QStringList items;
  for (const QString& caption : captions)
    items.append(needsQuotes(caption) ? u'"' + QString(caption).replace(u'"', QLatin1String("\"\"")) + u'"' : caption);
  return items.join(u',');
}

QStringList captionsOfList(const QString& list)
{
  QStringList captions;
  for (qsizetype from = 0; from < list.size() || (from > 0 && from == list.size()); ) {
    const qsizetype end = captionEnd(list, from, u",");
    captions.append(unquoted(QStringView(list).mid(from, end - from)));
    from = end + 1;
  }
  return captions;
}

CaptionLists splitCaptionLists(const QString& line)
{
  qsizetype from = 0;
  for (;;) {
    const qsizetype end = captionEnd(line, from, u",;");
    if (end == line.size())
      return {line, {}};
    if (line[end] == u';')
      return {line.left(end), line.mid(end + 1)};
    from = end + 1;
  }
}

}  // namespace kalvor
