// The prices of many lines to come, asked for together.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// What a price depends on, as the line's fields will hold it: texts, floats, a whole number as type.
struct PricedLine {
  Variant type, code, measure, quantity, baseQuantity, vatProductGroup;
};

// Prices and discounts for the lines of the current header record, remembered while an import runs. Lines whose type
// takes no price are passed over; a line that turns out otherwise is asked about when it is there.
KALVOR_RULES void AskLinePricesAhead(const TClientDataSet* header, const QList<PricedLine>& lines);

}  // namespace kalvor
