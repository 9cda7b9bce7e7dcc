// What was typed before: the lists of the local settings file that the boxes of the settings form offer.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

inline constexpr int longestHistory = 5;

// The values of the lines whose text begins with the key, in list order.
KALVOR_RULES QStringList historyFromLines(const QStringList& lines, const QString& key);
// The text first (an empty one too), an equal item taken out, the oldest dropped past longestHistory.
KALVOR_RULES QStringList historyWith(QStringList items, const QString& text);
// Lines key0=..., key1=..., most recent first.
KALVOR_RULES QStringList historyLines(const QString& key, const QStringList& items);

}  // namespace kalvor
