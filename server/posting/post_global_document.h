// Posting of global sale documents.
#pragma once

#include "server/posting/global_document.h"

namespace kalvor::server {

// What a posting left behind, for the answer.
struct PostedDocument {
  QString id;
  PostedKind kind = PostedKind::Invoice;
  QString number;
  QString shipmentId;   // empty: no goods moved
};

// Posts a document of the session's company: the invoice or credit memo and the store document with numbers of their
// series, entries of goods, VAT, ledger, contractor and money, all in the caller's transaction, of which nothing may be
// committed when it throws. Throws RpcError (Refused, Bulgarian) for a document that may not be posted, StoreError.
// Who may post it, and that nobody else has it open, the caller has seen to.
KALVOR_SERVER PostedDocument postGlobalDocument(const Access& access, const QString& documentId);

}  // namespace kalvor::server
