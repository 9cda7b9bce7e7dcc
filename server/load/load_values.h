// From the text of a file's cell to a column's value.
#pragma once

#include <optional>
#include <string_view>

#include "server/store/introspection.h"

namespace kalvor::server {

// A decimal number with "." as whole millionths, rounded half away from zero; nothing when it is none or too large.
KALVOR_SERVER std::optional<qint64> parseAmount(std::string_view text);

// The value for a column, amounts as whole millionths; the empty text is null. Dates are yyyy-MM-dd, times
// yyyy-MM-ddThh:mm:ss, booleans 1 or 0. On failure the value is invalid and error says why, for the user.
KALVOR_SERVER Variant parseCell(std::string_view text, const ColumnInfo& column, QString& error);

}  // namespace kalvor::server
