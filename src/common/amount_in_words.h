// Money amounts in Bulgarian words, as printed documents spell their totals.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Whole units in words, then the currency, then " и .NN" with the hundredths in digits. No currency is the lev
// ("лев" after exactly one unit, "лева" otherwise); a given one is written as it is. Spelled up to
// 999 999 999 999 999.99; from 10^15 on, where a double has no hundredths any more, the units stay in digits.
// DataError for what is no finite number.
KALVOR_RULES QString NumberToText(double Value, const QString& Currency = {});

}  // namespace kalvor
