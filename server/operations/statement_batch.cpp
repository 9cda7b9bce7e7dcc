#include "rpc/rpc_error.h"
#include "server/client_sql/client_change.h"
#include "server/operations/handlers.h"
#include "server/operations/own_statements.h"
#include "server/updates/change_statement.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxBatchStatements = 10'000;

void runStatement(CallContext& call, ChangeWriter& writer, const QString& statement)
{
  if (const auto result = runOwnStatement(call, statement)) {
    if (*result != 0) {
      throw RpcError(RpcError::Conflict, QStringLiteral("Записът е изтрит или променен от друг потребител."));
    }
  } else if (const auto change = parseClientChange(statement)) {
    writer.write(*change);
  } else {
    refuseStatement();
  }
}

}  // namespace

// The transaction of the call, or of the client around it, is what makes the batch one; an error ends it here.
Variant callExecMultySql(CallContext& call)
{
  const auto statements = statementsOf(call.text(0));
  if (!statements) {
    refuseStatement();
  }
  if (statements->size() > maxBatchStatements) {
    throw RpcError(RpcError::Refused, QStringLiteral("Командите са повече от %1.").arg(maxBatchStatements));
  }
  const Access access = call.access();
  ChangeWriter writer(access);
  for (qsizetype i = 0; i < statements->size(); ++i) {
    try {
      runStatement(call, writer, statements->at(i));
    } catch (const RpcError& error) {
      // Of a long batch the log is to have the statement that was refused, not just the beginning.
      call.arguments[0] = statements->at(i);
      throw RpcError(error.code(), QStringLiteral("Команда %1: %2").arg(i + 1).arg(error.message()), error.incident());
    }
  }
  writer.finish();
  return 0;
}

}  // namespace kalvor::server
