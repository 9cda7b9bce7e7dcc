// Boxes that offer what was typed into them before.
#pragma once

#include <QStringList>

#include "layer_export.h"

class QComboBox;

namespace kalvor {

// Shows the value and appends the values of the lines that begin with the key.
BASE_PACKAGE void GetCbHistoryItemsFromIni(const QStringList& list, const QString& value, const QString& key,
                                           QComboBox* box);
// Puts the box's text on top of its items, keeps five of them, and adds them to the list as key0=..., key1=...
BASE_PACKAGE void SaveCbHistoryItemsToIni(const QString& key, QComboBox* box, QStringList& list);

}  // namespace kalvor
