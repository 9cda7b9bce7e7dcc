// Quantities between a line's measure and the base measure, through QtyPerUnitOfMeasure.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// target = quantity x QtyPerUnitOfMeasure. An empty target name means the quantity field's name + "_base"; without that
// field, or without the ratio, nothing happens. Nothing while the guard is set; set while it works, then cleared, also
// after an error, which is logged and raised.
KALVOR_RULES void CalcBaseQuantity(TField* quantity, bool& guard, const QString& targetName = {});
// The field named like the base field less its last five characters = base / QtyPerUnitOfMeasure, or 0 when that is 0.
KALVOR_RULES void CalcQuantyFromBase(TField* base);

}  // namespace kalvor
