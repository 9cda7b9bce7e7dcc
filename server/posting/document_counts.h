// How much there is behind each link of the navigation of a document.
#pragma once

#include <array>

#include "server/rights/access.h"

namespace kalvor::server {

constexpr int navigationLinkCount = 13;

// Records by link: invoices, credit memos, debit memos, store documents, entries of lines, of value, of the ledger, of
// VAT, of the contractor and their details, of money, payments, service orders. Types: 0 invoice, 1 credit memo, 2 store
// document, 3 journal entry; sides: 0 sales, 1 purchases, 2 service. Only what the user may read counts; a link that
// this database has nothing for is 0. Throws RpcError (BadArguments) for another type or side, StoreError.
KALVOR_SERVER std::array<int, navigationLinkCount> documentCounts(const Access& access, int type, int side,
                                                                  const QString& documentId);

}  // namespace kalvor::server
