// What a document makes the contractor owe, and what settles it: the invoice that a credit memo applies to, or money at once.
#pragma once

#include "server/posting/ledger.h"
#include "server/posting/posting_setup.h"

namespace kalvor::server {

// Writes the entries with their details, the money and the differences of rates. A credit memo settles as much of its
// invoice as is open, the rest of it stays open. Throws RpcError, StoreError.
void postContragent(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger);

}  // namespace kalvor::server
