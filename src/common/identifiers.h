// Check digits of Bulgarian identification numbers. Only 0 to 9 are digits. None of these raises.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Unified identification code of a legal person: 9 or 13 digits, whatever stands between and around them.
KALVOR_RULES bool isCorrectBulstat(const QString& text);
// Ten-digit tax number; blanks around it are passed over.
KALVOR_RULES bool isCorrectTaxNo(const QString& text);
// Personal number of a citizen: exactly ten digits that begin with a date of birth, month + 20 for the 1800s, + 40
// for the 2000s.
KALVOR_RULES bool isCorrectEGN(const QString& text);

}  // namespace kalvor
