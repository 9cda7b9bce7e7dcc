// What an import reader hands to the import run: the cells of one record and of the lines of its document.
#pragma once

#include <QList>

#include "data/variant.h"
#include "layer_export.h"

namespace kalvor {

// One value on its way into a dataset field. Value is text for a field read from the file, whatever the server
// answered for a looked-up one.
struct TImportCell {
  QString FieldName;
  Variant Value;
  bool IsKey = false;  // finds the existing record, and names it in the logs

  bool operator==(const TImportCell&) const = default;
};
using TImportLine = QList<TImportCell>;  // one record
using TImportSet = QList<TImportLine>;   // the detail lines of one document

// The values of the key cells, in line order, joined by the separator; an absent value is empty text.
KALVOR_RULES QString GetImportRecInfo(const TImportLine& line, const QString& separator);

}  // namespace kalvor
