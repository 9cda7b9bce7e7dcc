// The discount of a document line, or the special price that replaces it.
#pragma once

#include "server/pricing/line_request.h"

namespace kalvor::server {

// Found: an ordinary discount, 0 when there is none. LookupSpecial on the sale side: the special price applies, and
// the percent counts beside it; on the purchase side: a discount above 0 was found.
struct DiscountAnswer {
  LookupStatus status = LookupFound;
  double percent = 0;
  double specialPrice = 0;  // above 0 with LookupSpecial of a sale, else 0
};

// The row of N_ItemDiscount that is nearest to the line: of its contractor, then of his price group, then of
// everybody; within that of the item, then of its group, then of the group's parents; then of the line's sub-type,
// measure; then with the greatest MinQuantity not above the line's quantity (in the row's measure, base units when
// it has none); then with the latest start. Validity as with prices.
// A special price is local currency without VAT for one of the row's measure, and is answered in local currency:
// the request names no currency. It counts for sales only. Throws StoreError.
KALVOR_SERVER DiscountAnswer findItemDiscount(Connection& db, const QString& companyId, const LineRequest& request);

}  // namespace kalvor::server
