// The first sheet of a binary workbook (.xls).
#pragma once

#include "platform/cell_text.h"
#include "platform/text_table.h"

namespace kalvor {

TextTable readXls(const QString& fileName, const CellTextFormat& format);

}  // namespace kalvor
