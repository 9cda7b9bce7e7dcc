// The first sheet of an Office Open XML workbook (.xlsx).
#pragma once

#include "platform/cell_text.h"
#include "platform/text_table.h"

namespace kalvor {

TextTable readXlsx(const QString& fileName, const CellTextFormat& format);

}  // namespace kalvor
