// VAT of a document by its groups: entries for the VAT ledger and the amounts of the accounts.
#pragma once

#include "server/posting/ledger.h"
#include "server/posting/posting_setup.h"

namespace kalvor::server {

// The totals of a document from its lines, VAT rounded once a percent as the document shows it.
SaleTotals documentTotals(const QList<GlobalLine>& lines, const SaleRules& rules);

// Writes one VAT entry a group. VAT of a percent is shared out to its groups so that they add up to the document's.
// Throws RpcError for a missing account, StoreError.
void postVat(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger);

}  // namespace kalvor::server
