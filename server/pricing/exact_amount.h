// A quantity that takes part in a price: multiplied and divided without loss, rounded once at the end.
#pragma once

#include <QtCore/qglobal.h>
#include <optional>

#include "layer_export.h"

namespace kalvor::server {

class KALVOR_SERVER ExactAmount {
 public:
  explicit ExactAmount(qint64 millionths);

  // By whole numbers of any common unit: times 3, over 12; millionths over millionths. over must not be 0.
  ExactAmount& multiply(qint64 times, qint64 over);

  // Half away from zero at that many decimals (at most 9); negative decimals do not round. Nothing when the amount
  // has grown beyond what can be counted.
  std::optional<double> rounded(int decimals) const;
  // The same in whole millionths, at most 6 decimals; negative decimals round to millionths.
  std::optional<qint64> roundedMillionths(int decimals) const;

 private:
  __extension__ using Wide = __int128;
  static Wide commonDivisor(Wide a, Wide b);
  std::optional<Wide> wholeUnits(int decimals) const;

  Wide numerator_;
  Wide denominator_;
  bool overflow_ = false;
};

}  // namespace kalvor::server
