// Records on their way between forms: values by field name, and the search for a record among several. Also date-times
// cut out of a text by a picture.
#pragma once

#include <QDateTime>

#include "layer_export.h"
#include "registry/form_types.h"

namespace kalvor {

// Of the first field with exactly this name; null when there is none.
KALVOR_RULES Variant GetRecLineFldValue(const TRecordLine& line, const QString& name);
// Sets the first field of this name, without regard to case. False: there is none.
KALVOR_RULES bool SetRecLineFldValue(TRecordLine& line, const QString& name, const Variant& value);
// Takes the record at the index out; an index that is none changes nothing.
KALVOR_RULES void DeleteCell(TSelectionList& list, int index);
// The first record whose first named field has the first value and, with all, every named field its own. An empty
// value is equal to nothing. index is set only when a record was found.
KALVOR_RULES bool FindInArray(const TSelectionList& list, const QString& names, const VariantArray& values, bool all,
                              int& index);

// The value, first expanded as a date of the filter language ("+3d", "15.1") to "yyyymmdd", is read at the places of
// the letters y, m, d, h, n and s of the pattern. TELException when it does not expand, DataError when the parts are no
// date and time.
KALVOR_RULES QDateTime GenerateDateTime(const QString& value, const QString& pattern);

}  // namespace kalvor
