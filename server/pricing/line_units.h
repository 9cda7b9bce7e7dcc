// How the measure of a line relates to the item's base measure, and for how many base units its price is asked.
//
// A line carries its measure and, beside it, how many base units one of it holds; a change of the measure arrives in
// two steps, the measure first. Between them the caller still works with the old number and multiplies the price by it
// and then by new over old. So a price is answered for the whole measure when the line's quantities already agree
// with it (they say 12 pieces a box and the measure is the box of 12), and for one base unit while they still speak of
// another measure. With a piece at 1.00 and a box of 12:
//   piece to box    the line says 1 a box    answered 1.00, the caller makes it 1 x 1.00 and then 12.00
//   quantity        the line says 12 a box   answered 12.00, the caller takes it as it is
//   box to piece    the line says 12 a piece answered 1.00, the caller makes it 12 x 1.00 and then 1.00
#pragma once

#include "server/pricing/line_request.h"

namespace kalvor::server {

// All in millionths.
struct LineUnits {
  QString measureId;                   // of the line; the base measure when it names none
  qint64 perMeasure = amountScale;     // base units in one of the measure
  qint64 answered = amountScale;       // base units that the answered price is for
  qint64 quantity = 0;                 // of the line in its measure, never negative
  qint64 baseQuantity = 0;
};

// A measure that the item does not have counts as many base units as the line says, 1 when it says nothing. A number
// that belongs to no measure of the item was typed by hand and is taken as it is. Throws StoreError.
LineUnits lineUnits(Connection& db, const QString& companyId, const PricedItem& item, const LineRequest& request);

}  // namespace kalvor::server
