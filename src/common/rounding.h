// Rounding of money: half away from zero, by the first dropped digit alone, in extended precision.
#pragma once

#include <QtGlobal>
#include <concepts>

#include "layer_export.h"

namespace kalvor {

// The whole number nearest to X: below a first decimal of 5 it is X without its decimals, else the next one away from
// zero. Beyond the 64-bit integers it is the last one on that side; 0 for what is no number.
KALVOR_RULES qint64 CustomRound(long double X);

// X rounded to so many decimals. A negative number of decimals, and an X that with them and one more would pass the
// largest 64-bit integer, give X unchanged.
KALVOR_RULES long double RoundUp(long double X, int Digits);

// The same with the decimals first, as the amounts of documents write it; it gives up one step earlier, past 2^63 - 2.
KALVOR_RULES long double roundedAmount(int digits, long double value);
long double RoundUp(int digits, std::floating_point auto value)
{
  return roundedAmount(digits, value);
}

}  // namespace kalvor
