// The documents that a posting makes: the invoice or credit memo, and the store document.
#pragma once

#include "server/posting/posting_job.h"

namespace kalvor::server {

// Both give the documents their numbers out of their series and copy what the global document says. Throw RpcError
// without a series, for a used-up one, StoreError.
void writePostedDocument(PostingJob& job);
void writeShipment(PostingJob& job);

// What came back of an invoice's lines. Throws RpcError when it is more than was sold, or not of the invoice.
void noteReturnedQuantities(const PostingJob& job);

// Marks the global document, once: throws RpcError when somebody was quicker.
void markPosted(const PostingJob& job);

}  // namespace kalvor::server
