#include <QDateTime>
#include <QUuid>

#include "rpc/rpc_error.h"
#include "server/log.h"
#include "server/operations/handlers.h"

namespace kalvor::server {

namespace {

constexpr qsizetype longestInfoName = 255;

// Stored queries have no computed columns that a save would have to keep: there is nothing to switch, and the calls only
// see to it that the providers are the session's own.
Variant checkOwnProviders(CallContext& call)
{
  for (const QString& name : call.text(0).split(u';', Qt::SkipEmptyParts)) {
    if (!call.core.state().provider(call.session, name.trimmed())) {
      throw RpcError(RpcError::Refused, QStringLiteral("Няма такъв източник на данни: „%1“.").arg(name.left(64)));
    }
  }
  return 0;
}

}  // namespace

Variant callDisableFlowFields(CallContext& call) { return checkOwnProviders(call); }

Variant callEnableFlowFields(CallContext& call) { return checkOwnProviders(call); }

Variant callSetTransferImportResult(CallContext& call)
{
  const QString name = call.text(0);
  if (name.trimmed().isEmpty() || name.size() > longestInfoName) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Не е посочен файл на трансфера."));
  }
  const Session& session = call.session;
  call.db.execute(QStringLiteral("INSERT INTO S_TransferLog (Id, Comp_Id, FileName, C_Businessgroup_Id, C_User_Id, C_Datetime) "
                                 "VALUES (?, ?, ?, ?, ?, ?)"),
                  {QUuid::createUuid().toString(QUuid::Id128).toUpper(), session.companyId, name, session.groupId,
                   session.userId, QDateTime::currentDateTime()});
  logEvent(LogLevel::Info, "transfer_imported", {{"user", session.userId}, {"file", name}});
  return 0;
}

}  // namespace kalvor::server
