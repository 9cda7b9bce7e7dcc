#include "filters/sort_order.h"

#include <QStringList>

namespace kalvor {

namespace {

struct DirectionRow {
  SortDirection direction;
  const char16_t* stored;
  const char16_t* shown;
};
constexpr DirectionRow directionRows[] = {
    {SortDirection::Ascending, u"ASC", u"Нарастващ"},
    {SortDirection::Descending, u"DESC", u"Намаляващ"},
};

const DirectionRow& rowOf(SortDirection direction)
{
  return directionRows[int(direction)];
}

}  // namespace

QList<SortItem> readSortOrder(const QString& text)
{
  QList<SortItem> items;
  for (const QString& part : text.split(QStringLiteral(", "))) {
    const QString item = part.simplified();
    if (item.isEmpty()) {
      continue;
    }
    const QString direction = item.section(u' ', 1, 1);
    const bool down = direction.compare(QStringView(rowOf(SortDirection::Descending).stored), Qt::CaseInsensitive) == 0;
    items.append({item.section(u' ', 0, 0), down ? SortDirection::Descending : SortDirection::Ascending});
  }
  return items;
}

QString sortOrderText(const QList<SortItem>& items)
{
  QStringList texts;
  for (const SortItem& item : items) {
    texts.append(item.field + u' ' + QString::fromUtf16(rowOf(item.direction).stored));
  }
  return texts.join(QStringLiteral(", "));
}

QString sortDirectionText(SortDirection direction)
{
  return QString::fromUtf16(rowOf(direction).shown);
}

SortDirection sortDirectionOf(const QString& text)
{
  return text == sortDirectionText(SortDirection::Descending) ? SortDirection::Descending : SortDirection::Ascending;
}

}  // namespace kalvor
