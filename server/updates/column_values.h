// Values of a delta as the columns of a table keep them.
#pragma once

#include <optional>

#include "server/store/introspection.h"

namespace kalvor::server {

// In the column's type; an empty text in a number or a date is null. Nothing when it does not convert.
KALVOR_SERVER std::optional<Variant> columnValue(const ColumnInfo& column, const Variant& value);

// Whether the database would keep the same for both: amounts to the millionth, times to the second, null as the
// empty text.
KALVOR_SERVER bool sameColumnValue(const ColumnInfo& column, const Variant& left, const Variant& right);

}  // namespace kalvor::server
