// What the current user may do with a document before it is posted. True: go on. A check that answers false has told the
// user why; nothing has changed on the server. The rights are the group "UserActions" of the session's user actions
// (missing or not a number = 0); the administrator has all of them, and contractor mode 3. Errors are logged, shown, and
// answer false. All read the session's object, not the document's.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// How a document is paid; other kinds ask nothing about cash.
enum PaymentKind : int { PaidInCash = 1, PaidByMethod = 2 };

// Cash, then the contractor's credit limit and overdue debt (a cash sale by a cashier skips both), then unit cost.
// documentKind as CheckItemUnitCost of the server takes it.
KALVOR_RULES bool CheckSaleDocument(const QString& documentId, const QString& contragentId,
                                    const QString& paymentMethodId, double amount, bool checkUnitCost,
                                    int paymentKind, quint8 documentKind);
KALVOR_RULES bool CheckCanPostDocument(const QString& paymentMethodId, int paymentKind);
KALVOR_RULES bool CheckPurchaseDocument(const QString& paymentMethodId);
// Lines whose account (or balancing account) is a payment method, type 3. Visits them from the first.
KALVOR_RULES bool CheckJournal(TClientDataSet* lines);

}  // namespace kalvor
