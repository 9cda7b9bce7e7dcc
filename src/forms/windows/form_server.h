// Calls of the application server that the forms make, beside those of session/server_calls.h.
#pragma once

#include "rpc/remote_calls.h"

namespace kalvor {

// The session's server connection; DataError when there is no session.
RemoteCalls& sessionCalls();

// True when the server took everything. packet: [provider, delta] pairs; numbering: null or the numbering requests. The
// request id makes a repetition after a lost answer harmless.
bool updateClientData(const VariantArray& packet, const Variant& numbering, const QString& requestId);
QString absoluteNumberSeries();

// Around an import: the server need not keep the computed fields of these providers (";"-separated) up to date.
void disableFlowFields(const QString& providers);
void enableFlowFields(const QString& providers);

}  // namespace kalvor
