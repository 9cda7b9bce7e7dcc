// How the measure of a line relates to the item's base measure.
#pragma once

#include "server/pricing/line_request.h"

namespace kalvor::server {

// All in millionths.
struct LineUnits {
  QString measureId;                   // of the line; the base measure when it names none
  qint64 perMeasure = amountScale;     // base units in one of the measure
  qint64 quantity = 0;                 // of the line in its measure, never negative
  qint64 baseQuantity = 0;
};

// What the item's measures say. A measure that the item does not have holds as many base units as the line says, 1 when
// it says nothing. What the line says may be old, since a change of the measure arrives in two steps: a number that
// belongs to another measure of the item does not count, one that belongs to none was typed by hand and does.
// Throws StoreError.
LineUnits lineUnits(Connection& db, const QString& companyId, const PricedItem& item, const LineRequest& request);

}  // namespace kalvor::server
