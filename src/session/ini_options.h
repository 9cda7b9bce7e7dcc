// The local form options: which stored settings the forms use.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

struct TIniOptions {
  bool Filter = false;              // forms keep and restore their filter
  bool SortOrder = false;           // ... their sort order
  bool Grids = false;               // data grids keep and restore their view
  bool FormSize = false;            // forms keep and restore their size
  bool ApplyColorSettings = false;  // grids colour their cells by the form's rules

  bool operator==(const TIniOptions&) const = default;
};
KALVOR_RULES extern TIniOptions IniOptions;

// The lines of the settings group "IniOptions", in that order, "-1" for true and "0" for false; and back (a
// missing line, or any other text than "-1", is false).
KALVOR_RULES QStringList iniOptionLines(const TIniOptions& options);
KALVOR_RULES TIniOptions iniOptionsFromLines(const QStringList& lines);

// Booleans as settings hold them.
inline QString settingText(bool value) { return value ? QStringLiteral("-1") : QStringLiteral("0"); }
// A number (0 = false), or "True" and "False" in any case; anything else is the given value.
KALVOR_RULES bool settingBool(const QString& text, bool otherwise);

}  // namespace kalvor
