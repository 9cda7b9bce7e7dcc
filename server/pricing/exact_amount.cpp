#include "server/pricing/exact_amount.h"

#include <algorithm>

#include "server/store/connection.h"

namespace kalvor::server {

namespace {

constexpr int mostDecimals = 9;
constexpr int millionthDecimals = 6;

qint64 powerOfTen(int exponent)
{
  qint64 power = 1;
  while (exponent-- > 0) {
    power *= 10;
  }
  return power;
}

}  // namespace

ExactAmount::ExactAmount(qint64 millionths) : numerator_(millionths), denominator_(amountScale) {}

ExactAmount::Wide ExactAmount::commonDivisor(Wide a, Wide b)
{
  a = a < 0 ? -a : a;
  b = b < 0 ? -b : b;
  while (b != 0) {
    const Wide rest = a % b;
    a = b;
    b = rest;
  }
  return a == 0 ? 1 : a;
}

ExactAmount& ExactAmount::multiply(qint64 times, qint64 over)
{
  Q_ASSERT(over != 0);
  Wide factor = times;
  Wide divisor = over;
  const Wide own = commonDivisor(factor, divisor);
  factor /= own;
  divisor /= own;
  const Wide across = commonDivisor(numerator_, divisor);
  const Wide other = commonDivisor(factor, denominator_);
  overflow_ = __builtin_mul_overflow(numerator_ / across, factor / other, &numerator_) || overflow_;
  overflow_ = __builtin_mul_overflow(denominator_ / other, divisor / across, &denominator_) || overflow_;
  if (denominator_ < 0) {
    numerator_ = -numerator_;
    denominator_ = -denominator_;
  }
  return *this;
}

std::optional<ExactAmount::Wide> ExactAmount::wholeUnits(int decimals) const
{
  Wide moved = 0;
  if (overflow_ || __builtin_mul_overflow(numerator_, static_cast<Wide>(powerOfTen(decimals)), &moved)) {
    return {};
  }
  const Wide whole = moved / denominator_;
  const Wide rest = moved % denominator_;
  const Wide size = rest < 0 ? -rest : rest;
  return size >= denominator_ - size ? whole + (moved < 0 ? -1 : 1) : whole;
}

std::optional<double> ExactAmount::rounded(int decimals) const
{
  if (decimals < 0) {
    return overflow_ ? std::nullopt
                     : std::optional(double(static_cast<long double>(numerator_) / static_cast<long double>(denominator_)));
  }
  const int places = std::min(decimals, mostDecimals);
  const auto units = wholeUnits(places);
  if (!units) {
    return {};
  }
  return double(static_cast<long double>(*units) / static_cast<long double>(powerOfTen(places)));
}

std::optional<qint64> ExactAmount::roundedMillionths(int decimals) const
{
  const int places = decimals < 0 ? millionthDecimals : std::min(decimals, millionthDecimals);
  const auto units = wholeUnits(places);
  constexpr Wide largest = std::numeric_limits<qint64>::max();
  const Wide scale = powerOfTen(millionthDecimals - places);
  if (!units || *units > largest / scale || *units < -largest / scale) {
    return {};
  }
  return qint64(*units * scale);
}

}  // namespace kalvor::server
