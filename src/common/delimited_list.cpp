#include "common/delimited_list.h"

namespace kalvor {
namespace {

// Start of the index-th item, -1 when there are fewer separators.
qsizetype startOfItem(const QString& text, const QString& separator, int index)
{
  if (index < 0 || (index > 0 && separator.isEmpty()))
    return -1;
  qsizetype start = 0;
  for (int i = 0; i < index; ++i) {
    const qsizetype found = text.indexOf(separator, start);
    if (found < 0)
      return -1;
    start = found + separator.size();
  }
  return start;
}

qsizetype endOfItem(const QString& text, const QString& separator, qsizetype start)
{
  const qsizetype found = separator.isEmpty() ? -1 : text.indexOf(separator, start);
  return found < 0 ? text.size() : found;
}

}  // namespace

int GetItemsCountInList(const QString& text, const QString& separator)
{
  int count = 1;
  if (separator.isEmpty())
    return count;
  // Everything behind the last visible character is the blank rest of some item.
  qsizetype visibleEnd = text.size();
  while (visibleEnd > 0 && text.at(visibleEnd - 1).isSpace())
    --visibleEnd;
  for (qsizetype found = text.indexOf(separator); found >= 0;) {
    const qsizetype next = found + separator.size();
    if (next < visibleEnd)
      ++count;
    found = text.indexOf(separator, next);
  }
  return count;
}

QString GetItemAtPos(const QString& text, const QString& separator, int index)
{
  const qsizetype start = startOfItem(text, separator, index);
  return start < 0 ? QString() : text.mid(start, endOfItem(text, separator, start) - start);
}

int GetPosOfItem(const QString& text, const QString& separator, const QString& item)
{
  const QString wanted = item.trimmed();
  const QString list = text + separator;
  const int count = GetItemsCountInList(list, separator);
  for (int i = 0; i < count; ++i)
    if (GetItemAtPos(list, separator, i).trimmed() == wanted)
      return i;
  return -1;
}

void SetItemAtPos(QString& text, const QString& separator, const QString& newItem, int index)
{
  const qsizetype start = startOfItem(text, separator, index);
  if (start >= 0 && index <= GetItemsCountInList(text, separator))
    text.replace(start, endOfItem(text, separator, start) - start, newItem);
}

}  // namespace kalvor
