// Goods of a document: what moves, at what cost, and whether there is enough of it.
#pragma once

#include "server/posting/ledger.h"
#include "server/posting/posting_setup.h"

namespace kalvor::server {

// Writes the item and value entries of the lines that move goods, at the average cost of everything posted so far. The
// last piece takes what is left of the value; goods that come back bring the cost that they left with. Throws RpcError
// when there is not enough of an item on the document's day or a later one and the company does not allow it, or when
// more comes back than was sold; StoreError.
void postItems(PostingJob& job, PostingSetup& setup, LedgerTransaction& ledger);

}  // namespace kalvor::server
