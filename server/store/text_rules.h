// How text compares, is searched and is folded in the database: without regard to case, Cyrillic too.
#pragma once

#include <QString>
#include <string_view>

#include "layer_export.h"

namespace kalvor::server {

// The collation KALVOR over UTF-8: negative, zero, positive. Malformed bytes compare by their value.
KALVOR_SERVER int compareText(std::string_view left, std::string_view right);

// LIKE over UTF-8: "%" any run, "_" one character; escape 0 = none. Time is bounded by the product of the lengths.
KALVOR_SERVER bool matchesPattern(std::string_view text, std::string_view pattern, char32_t escape = 0);

// One character as it compares: lower case where there is one.
KALVOR_SERVER char32_t foldCharacter(char32_t character);

}  // namespace kalvor::server
