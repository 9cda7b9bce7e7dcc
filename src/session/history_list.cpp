#include "session/history_list.h"

#include "session/local_settings_file.h"

namespace kalvor {

QStringList historyFromLines(const QStringList& lines, const QString& key)
{
  QStringList items;
  for (const QString& line : lines)
    if (line.startsWith(key))
      items.append(lineValue(line));
  return items;
}

QStringList historyWith(QStringList items, const QString& text)
{
  items.removeOne(text);
  items.prepend(text);
  while (items.size() > longestHistory)
    items.removeLast();
  return items;
}

QStringList historyLines(const QString& key, const QStringList& items)
{
  QStringList lines;
  for (qsizetype i = 0; i < items.size(); ++i)
    lines.append(key + QString::number(i) + u'=' + items.at(i));
  return lines;
}

}  // namespace kalvor
