// Clearing what forms keep for their user in the settings document: filter and order, grid views, sizes.
#pragma once

#include <QDomDocument>
#include <QList>

#include "layer_export.h"

namespace kalvor {

// Takes the stored settings of one form out of the session's settings document; nothing when there is none.
KALVOR_RULES void DeleteUserSettings(int formId, bool grids, bool filterAndSort, bool sizes);
KALVOR_RULES void DeleteUserSettings(QDomDocument& document, int formId, bool grids, bool filterAndSort, bool sizes);

// The numbers under which the settings form asks for a kind.
enum class StoredSettings : quint8 { FilterAndSort = 1, GridViews = 2, FormSizes = 3 };

// The forms that have stored settings of a kind, in document order, each once.
KALVOR_RULES QList<int> formsWithSettings(const QDomDocument& document, StoredSettings kind);
KALVOR_RULES void DeleteUserSettings(int formId, StoredSettings kind);

}  // namespace kalvor
