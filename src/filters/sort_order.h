// The text of a sort order: "Name ASC, DocDate DESC".
#pragma once

#include <QList>
#include <QString>

#include "layer_export.h"

namespace kalvor {

enum class SortDirection : quint8 { Ascending, Descending };

struct SortItem {
  QString field;
  SortDirection direction = SortDirection::Ascending;

  bool operator==(const SortItem&) const = default;
};

// Items at ", ", each a name, a blank and a direction; anything but "DESC" (in any letters) is ascending. Blank
// items are left out.
KALVOR_RULES QList<SortItem> readSortOrder(const QString& text);
KALVOR_RULES QString sortOrderText(const QList<SortItem>& items);

// "Нарастващ", "Намаляващ", and back; any other text is ascending.
KALVOR_RULES QString sortDirectionText(SortDirection direction);
KALVOR_RULES SortDirection sortDirectionOf(const QString& text);

}  // namespace kalvor
