// Statements, parameters and values as SQL text; connection texts; identifiers. None of it talks to the server.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// A new GUID as 32 upper-case hexadecimal digits.
KALVOR_RULES QString CreateUniqueID();

}  // namespace kalvor
