// How records are written to a text file: the user's choice, in the settings group "ExportOptions".
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

enum class ExportSeparator : quint8 { Fixed, Tab, Comma, Semicolon, Symbol };

struct TExportOptions {
  ExportSeparator separator = ExportSeparator::Fixed;  // Fixed: columns of equal width, no separator
  QString symbol;                                      // between the values, only with Symbol
  bool captions = false;                               // a first line of captions
  bool dosCodePage = false;
  int decimals = 2;                                    // of fractions, 0 to 6

  bool operator==(const TExportOptions&) const = default;
};

inline const QString exportOptionsGroup = QStringLiteral("ExportOptions");

// The lines Separator, Symbol, Caption, Dos, Drob; and back: an empty separator is "Fixed", an unknown one a symbol.
KALVOR_RULES QStringList exportOptionLines(const TExportOptions& options);
KALVOR_RULES TExportOptions exportOptionsFromLines(const QStringList& lines);

}  // namespace kalvor
