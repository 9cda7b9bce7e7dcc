// Texts of items between separators, addressed from 0.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// 1 plus the separators that are followed by anything but blanks: an empty text counts 1, a trailing empty item
// does not count. An empty separator leaves one item.
KALVOR_RULES int GetItemsCountInList(const QString& text, const QString& separator);
// The text between the index-th separator and the next (or the end); empty when there are fewer separators.
KALVOR_RULES QString GetItemAtPos(const QString& text, const QString& separator, int index);
// Index of the first item that equals the given one, both trimmed; -1 when there is none.
KALVOR_RULES int GetPosOfItem(const QString& text, const QString& separator, const QString& item);
// Replaces the item at the index, at most the item count: that one is a trailing empty item. Where there is no item,
// nothing changes.
KALVOR_RULES void SetItemAtPos(QString& text, const QString& separator, const QString& newItem, int index);

}  // namespace kalvor
