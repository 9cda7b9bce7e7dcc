// The edit that opened a lookup, as selectors and their filters see it.
#pragma once

#include "data/field.h"

namespace kalvor {

class KALVOR_RULES SelectorControl {
 public:
  virtual ~SelectorControl();
  virtual QString Text() const = 0;   // what stands in it, written to its field or not
  virtual TField* Field() const = 0;  // null: not bound to a dataset
  virtual bool ReadOnly() const = 0;
};

}  // namespace kalvor
