// The first sheet of a binary workbook (.xls), with those that continue it.
#pragma once

#include "platform/cell_text.h"
#include "platform/text_table.h"

namespace kalvor {

TextTable readXls(const QString& fileName, const CellTextFormat& format);

}  // namespace kalvor
