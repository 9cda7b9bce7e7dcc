// What was refused, and to whom: one line of the log for every call that asked for something the user may not have or
// the server does not know.
#pragma once

#include "rpc/rpc_error.h"
#include "server/operations/operation.h"

namespace kalvor::server {

// Logs a refusal of these arguments: who, what was called, with which code, and the texts that name statements, tables,
// fields, orders and operators, never values. Errors of other kinds are not logged here.
void logRefusal(const Session& session, const Operation& operation, const VariantArray& arguments, const RpcError& error);

}  // namespace kalvor::server
