// A price as the set-up states it becomes the price that a line asks for.
#pragma once

#include "server/pricing/line_units.h"

namespace kalvor::server {

// A price of the set-up: millionths, of so many base units.
struct StatedPrice {
  qint64 price = 0;
  qint64 baseUnits = amountScale;
  QString currencyId;        // empty: local
  bool includesVat = false;
};

struct ConvertedPrice {
  LookupStatus status = LookupFound;
  double price = 0;
};

// For the units of the line, with or without VAT as the line asks, in the line's currency, rounded once to the
// company's decimals of prices. A currency without a rate on the line's day and a pair of groups without VAT set-up are
// LookupNoConversion, never a guess. Throws StoreError.
ConvertedPrice convertPrice(Connection& db, const QString& companyId, const PricedItem& item, const LineUnits& units,
                            const LineRequest& request, const StatedPrice& stated);

}  // namespace kalvor::server
