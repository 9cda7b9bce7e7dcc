// The texts of a string grid as a spreadsheet or a text file. Header lines are name=value lines that stand before the
// grid's rows; none = an empty list. Both raise DataError when the file cannot be written.
#pragma once

#include "data/string_table.h"

namespace kalvor {

// The header lines' names and values in the first two columns, an empty row, the title rows (bold, the first blue, the
// others green), the other rows; columns as wide as their texts. ".xlsx" by the name's extension, else ".xls".
KALVOR_RULES void writeGridSheet(const StringTable& table, int titleRows, const QStringList& headerLines,
                                 const QString& fileName);
// Header lines as name, tab, value; then every cell with a tab behind it. Windows-1251, lines end CR LF.
KALVOR_RULES void writeGridText(const StringTable& table, const QStringList& headerLines, const QString& fileName);

// Name and value of a header line; a line without "=" is all name.
struct GridHeaderLine {
  QString name;
  QString value;
};
KALVOR_RULES GridHeaderLine gridHeaderLine(const QString& line);

}  // namespace kalvor
