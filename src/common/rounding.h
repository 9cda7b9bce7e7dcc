// Rounding of money: half away from zero, by the first dropped digit alone, in extended precision.
#pragma once

#include <QtGlobal>
#include <concepts>

#include "layer_export.h"

namespace kalvor {

// The whole number nearest to X: below a first decimal of 5 it is X without its decimals, else the next one away from
// zero. Beyond the 64-bit integers it is the last one on that side; 0 for what is no number.
KALVOR_RULES qint64 CustomRound(long double X);

// X rounded to so many decimals. A negative number of decimals, and an X too large to be scaled by them and one more in
// 64-bit integers, give X unchanged. A scaled value below 2^40 that misses a half by no more than the doubles it was
// computed from can miss (2^-50 of it) counts as that half, so that amounts agree with decimal arithmetic on what the
// user typed.
KALVOR_RULES long double RoundUp(long double X, int Digits);
// The same with the decimals first, as the formulas of documents write it; it gives up one step earlier, past 2^63 - 2.
KALVOR_RULES long double roundedTo(int digits, long double value);
long double RoundUp(int digits, std::floating_point auto value)
{
  return roundedTo(digits, value);
}

// The decimal of up to six places that the double stands for, in extended precision: differences of such numbers keep
// their halves. A double that stands for none is given as it is.
KALVOR_RULES long double decimalOf(double value);

}  // namespace kalvor
