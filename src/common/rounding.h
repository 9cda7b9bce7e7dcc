// Rounding of money.
#pragma once

#include "layer_export.h"

namespace kalvor {

// Rounds half away from zero to so many decimals, looking at the first dropped digit only. A negative number of
// decimals and a value too large to scale give the value unchanged. All steps in extended precision. A value that misses
// a half by no more than the doubles it was computed from can miss (2^-50 of it) counts as that half, so that amounts
// agree with decimal arithmetic on what the user typed.
KALVOR_RULES long double RoundUp(int digits, long double value);

}  // namespace kalvor
