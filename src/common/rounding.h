// Rounding of money.
#pragma once

#include "layer_export.h"

namespace kalvor {

// Rounds half away from zero to so many decimals, looking at the first dropped digit only. A negative number of
// decimals and a value too large to scale give the value unchanged. All steps in extended precision. A value that misses
// a half by no more than the doubles it was computed from can miss (2^-50 of it) counts as that half, so that amounts
// agree with decimal arithmetic on what the user typed.
KALVOR_RULES long double RoundUp(int digits, long double value);

// The decimal of up to six places that the double stands for, in extended precision: differences of such numbers keep
// their halves. A double that stands for none is given as it is.
KALVOR_RULES long double decimalOf(double value);

}  // namespace kalvor
