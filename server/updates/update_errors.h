// The refusals of a save, as the user reads them.
#pragma once

#include <QDateTime>

#include "rpc/rpc_error.h"
#include "server/updates/update_target.h"

namespace kalvor::server {

RpcError invalidValue(const QString& caption);
RpcError tooLong(const QString& caption, int size);
RpcError outsideSecurity(int formId);
// user and moment may be unknown (empty, invalid).
RpcError conflict(const QString& user, const QDateTime& moment, const QStringList& captions);
// What a broken rule of the table means to the user; rethrows an error that is no broken rule.
RpcError constraintError(const StoreError& error, const UpdateTarget& target);

}  // namespace kalvor::server
