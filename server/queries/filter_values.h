// Values of filters as the database compares them.
#pragma once

#include <optional>

#include "data/data_type.h"
#include "data/variant.h"

namespace kalvor::server {

// The text between single quotes when there are such around it, inner ones halved; else the text itself.
KALVOR_SERVER QString withoutQuotes(const QString& text);

// A filter's value in a column's type: text, whole number, amount (double), boolean as 1 and 0, date as QDate,
// date-time as QDateTime (QDate when no time was given). Texts: numbers with ".", dates "yyyymmdd" or "yymmdd",
// times "hh:mm:ss" behind a date. Nothing when it does not convert.
KALVOR_SERVER std::optional<Variant> filterValue(DataType type, const Variant& value);

// The items of ('a','b') and of ('a','b without the closing bracket, of a plain list, or of an array. Nothing when
// a quote stays open. Nulls are left out.
KALVOR_SERVER std::optional<VariantArray> filterValueList(const Variant& value);

}  // namespace kalvor::server
