// Which request id a save carries: a repetition of a save whose answer got lost carries the first one's, so that the
// server does it once.
#pragma once

#include "data/record_set.h"
#include "data/variant.h"

namespace kalvor {

class SaveRequest {
 public:
  // packet: [provider, delta] pairs.
  QString idFor(const VariantArray& packet);
  void answered();  // yes or no: the next save is another one

 private:
  QString id_;
  VariantArray packet_;
};

// Equal but for the time of the save.
bool sameSave(const VariantArray& first, const VariantArray& second);

}  // namespace kalvor
