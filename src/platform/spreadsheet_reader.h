// The first sheet of a spreadsheet file, with those that continue it, as a table of texts.
#pragma once

#include "platform/cell_text.h"
#include "platform/text_table.h"

namespace kalvor {

// .xls (BIFF5 and BIFF8) and .xlsx, told apart by what is in the file, not by its name. Row 0 is the sheet's first row,
// column 0 its column A; the rows of the sheets that continue a full one follow it. Numbers and dates are written as
// the format has them, booleans as 1 and 0, errors as nothing; formulas give their stored results. DataError, in
// Bulgarian, when the file is none of the two, damaged, or too big.
KALVOR_PLATFORM TextTable readSpreadsheet(const QString& fileName, const CellTextFormat& format);

}  // namespace kalvor
