// Posted documents and entries are history: no save and no statement of a client changes them.
#pragma once

#include "server/updates/update_target.h"

namespace kalvor::server {

// What a save would change that has been posted, as the user is told; empty: nothing. Looks at the rows of the delta as
// the database has them before any of it is written. Counting a printed copy changes nothing, and documents that the same
// save has just inserted may get their lines. Rights and row filters are asked elsewhere: tell it only when they hold.
QString postedChange(const Access& access, const UpdateTarget& target, const QSet<QString>& newDocuments = {});

// Throws RpcError (Refused) unless the text is empty.
void refusePostedChange(const QString& text);

}  // namespace kalvor::server
