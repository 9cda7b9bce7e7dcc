#include "common/rounding.h"

#include <cmath>
#include <cstdlib>

namespace kalvor {

namespace {

constexpr long double largestScaled = 9223372036854775806.0L;  // 2^63 - 2

// What a product of a few doubles may lack of the decimal value that it stands for: 15 x 75.139 is 1127.085, and the
// double 75.139 is a little less. Numbers from the second figure on are whole.
constexpr long double doubleError = 0x1p-50L;
constexpr long double wholeFrom = 0x1p52L;

}  // namespace

long double RoundUp(int digits, long double value)
{
  if (digits < 0)
    return value;
  // Exceeding the limit only grows with further digits, so the loop may stop there.
  long double scaled = value;
  for (int i = 0; i < digits; ++i) {
    scaled *= 10;
    if (std::fabs(scaled) > largestScaled)
      return value;
  }
  if (!std::isfinite(scaled) || std::fabs(scaled * 10) > largestScaled)
    return value;
  if (std::fabs(scaled) < wholeFrom)
    scaled += scaled * doubleError;
  long double whole = std::trunc(scaled);
  const long long dropped = std::llabs(static_cast<long long>(std::trunc(scaled * 10)) % 10);
  if (dropped >= 5)
    whole += scaled >= 0 ? 1 : -1;
  for (int i = 0; i < digits; ++i)
    whole /= 10;
  return whole;
}

long double decimalOf(double value)
{
  constexpr long double millionths = 1e6L;
  const long double decimal = std::round(value * millionths) / millionths;
  return static_cast<double>(decimal) == value ? decimal : static_cast<long double>(value);
}

}  // namespace kalvor
