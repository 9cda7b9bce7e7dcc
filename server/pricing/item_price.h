// The price of a document line.
#pragma once

#include "server/pricing/line_request.h"

namespace kalvor::server {

struct PriceAnswer {
  LookupStatus status = LookupNoPrice;
  double price = 0;                   // 0 unless found
  bool allowInvoiceDiscount = false;
};

// The row of N_ItemPrice that is nearest to the line: of its contractor, then of his price group, then of everybody;
// within that of the line's measure, then of the base measure; then with the greatest MinQuantity not above the line's
// quantity (in the row's measure); then with the latest start. Only rows valid on the line's day, first and last day
// included. Without a row the item's list price: UnitPrice, on the purchase side UnitCost; 0 is none.
// A row that cannot be converted is LookupNoConversion, not passed over. Throws StoreError.
KALVOR_SERVER PriceAnswer findItemPrice(Connection& db, const QString& companyId, const LineRequest& request);

}  // namespace kalvor::server
