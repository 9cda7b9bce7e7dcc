// Whether a contractor may be sold to on credit.
#pragma once

#include <QDate>

#include "server/rights/access.h"

namespace kalvor::server {

// Bits of the mode that a caller asks with; further bits count for nothing.
enum ContragentCheck : int { CheckCreditLimit = 1, CheckOverdueDebt = 2 };

enum class ContragentVerdict : int { Clear = 0, AboveCreditLimit = 1, OverdueDebt = 2, Unknown = -1 };

// The credit limit first. Above it: what is open on the sales side and the amount (local currency, millionths) exceed
// N_Contragent.CreditLimit; null is no limit, 0 is no credit. Overdue: an open sales entry with something left to pay
// fell due before today. Unknown: no such contractor in the company, or not one that the user may see. A mode without
// checks is always clear. Throws StoreError.
KALVOR_SERVER ContragentVerdict checkSaleContragent(const Access& access, const QString& contragentId, qint64 amount,
                                                    int mode, const QDate& today);

}  // namespace kalvor::server
