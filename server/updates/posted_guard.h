// Posted documents and entries are history: no save and no statement of a client changes them.
#pragma once

#include "server/updates/update_target.h"

namespace kalvor::server {

// Looks at the rows of a delta as the database has them before any of it is written; counting a printed copy changes
// nothing, and documents that the same save has just inserted may get their lines. Throws RpcError (Refused) that names
// the document.
void requireNotPosted(const Access& access, const UpdateTarget& target, const QSet<QString>& newDocuments = {});

}  // namespace kalvor::server
