// Whether a document sells an item for less than it cost.
#pragma once

#include <QDate>

#include "server/rights/access.h"

namespace kalvor::server {

enum class UnitCostVerdict : int { Clear = 0, Below = 1, Unknown = -1 };

// Below: an item line (type 1) whose UnitCost_LCY, the net price after discounts, is less than the item's average cost
// of as many base units, rounded like prices. Lines of codes that are no item are passed over. Unknown: no such
// document in the company, or not one that the user may see, or a kind other than 0 (sale invoice). Throws StoreError,
// and RpcError (Forbidden) when the user may read no documents of the kind.
KALVOR_SERVER UnitCostVerdict checkItemUnitCost(const Access& access, const QString& documentId, int kind,
                                                const QDate& today);

// The average cost of a base unit as a fraction: what the item's value entries up to a day cost, over their quantity.
// Both in millionths.
struct AverageCost {
  qint64 cost = 0;
  qint64 quantity = amountScale;  // above 0
};

// Without a stock (the quantities sum to 0 or less) the item's own UnitCost. Throws StoreError.
KALVOR_SERVER AverageCost averageCost(Connection& db, const QString& companyId, const QString& itemId, qint64 unitCost,
                                      const QDate& day);

}  // namespace kalvor::server
