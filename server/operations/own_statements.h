// The two statements that every client builds for itself: saving the user's own settings, counting printed copies.
#pragma once

#include "server/operations/operation.h"

namespace kalvor::server {

// The answer of the statement, 0 for done; nothing when it is neither of the two. Throws RpcError (Forbidden,
// Refused) when the user may not do that.
std::optional<int> runOwnStatement(CallContext& call, const QString& statement);

// Throws RpcError (Refused).
[[noreturn]] void refuseStatement();

}  // namespace kalvor::server
