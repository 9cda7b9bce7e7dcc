// Macros in the values of stored filters, and how they are replaced.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// A value with "<#Param(": the session's value of that name (BUSINESSGROUP_ID, COMPANY_ID, USER_ID,
// CURRENT_DATE, any case), or the date that a relative date means; the empty text for any other name. Other
// values come back unchanged. TELException with "uKalvorUtils.ConvertSimleParamFilterValues" on errors.
KALVOR_RULES QString ConvertSimleParamFilterValues(const QString& value);

// The stored filter string without the parts between "&" that hold "<#Field(": for places with no record.
KALVOR_RULES void RemoveFilterLinesWithFieldRels(QString& filterText);

// The name inside a macro at the end of a value: the text between the opener and the last three characters.
KALVOR_RULES QString macroName(const QString& value, const QString& opener);

}  // namespace kalvor
