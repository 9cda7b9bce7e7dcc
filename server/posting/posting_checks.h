// What must hold before a document is posted, besides what its accounts and its goods must.
#pragma once

#include "server/posting/posting_job.h"

namespace kalvor::server {

// One row a rule, in the order in which they are told. Throws RpcError (Refused) with the first that is broken.
void checkDocument(const PostingJob& job);

}  // namespace kalvor::server
