#include "common/rounding.h"

#include <cmath>
#include <limits>

namespace kalvor {
namespace {

constexpr long double largestInteger = 9223372036854775807.0L;
constexpr long double largestScaledAmount = 9223372036854775806.0L;  // 2^63 - 2

// What a product of a few doubles may lack of the decimal value that it stands for: 15 x 75.139 is 1127.085, and the
// double 75.139 is a little less. From the second figure on it would be no small part of a unit any more.
constexpr long double doubleError = 0x1p-50L;
constexpr long double mendedBelow = 0x1p40L;

int firstDecimal(long double x)
{
  const long double size = std::fabs(x);
  // Far from zero ten times the value has no room for the decimal, but its fraction is exact.
  const long double shifted = size * 10 <= largestInteger ? size * 10 : (size - std::trunc(size)) * 10;
  return int(std::fmod(std::trunc(shifted), 10));
}

long double rounded(int digits, long double value, long double largestScaled)
{
  if (digits < 0)
    return value;
  // Passing the limit only gets worse with further digits, so the loop may stop there.
  long double scaled = value;
  for (int i = 0; i < digits; ++i) {
    scaled *= 10;
    if (!(std::fabs(scaled) <= largestScaled))
      return value;
  }
  if (!(std::fabs(scaled * 10) <= largestScaled))
    return value;
  if (std::fabs(scaled) < mendedBelow)
    scaled += scaled * doubleError;
  long double whole = static_cast<long double>(CustomRound(scaled));
  for (int i = 0; i < digits; ++i)
    whole /= 10;
  return whole;
}

}  // namespace

qint64 CustomRound(long double X)
{
  if (std::isnan(X))
    return 0;
  long double whole = std::trunc(X);
  if (std::isfinite(X) && firstDecimal(X) >= 5)
    whole += X >= 0 ? 1 : -1;
  if (whole >= largestInteger)
    return std::numeric_limits<qint64>::max();
  if (whole <= -largestInteger - 1)
    return std::numeric_limits<qint64>::min();
  return static_cast<qint64>(whole);
}

long double RoundUp(long double X, int Digits) { return rounded(Digits, X, largestInteger); }

long double roundedTo(int digits, long double value) { return rounded(digits, value, largestScaledAmount); }

long double decimalOf(double value)
{
  constexpr long double millionths = 1e6L;
  const long double decimal = std::round(value * millionths) / millionths;
  return static_cast<double>(decimal) == value ? decimal : static_cast<long double>(value);
}

}  // namespace kalvor
