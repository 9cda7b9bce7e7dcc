#include <QDateTime>

#include "rpc/frame.h"
#include "rpc/rpc_error.h"
#include "server/log.h"
#include "server/operations/operation.h"
#include "server/operations/refusal_log.h"

namespace kalvor::server {

namespace {

bool isWholeNumber(const Variant& value)
{
  bool ok = false;
  variantText(value).toInt(&ok);
  return ok;
}

bool fits(Shape shape, const Variant& value)
{
  const bool isList = value.typeId() == QMetaType::QVariantList;
  const bool simple = isNull(value) || (!isList && value.typeId() != QMetaType::QByteArray &&
                                        value.typeId() < int(QMetaType::User));
  switch (shape) {
    // No database keeps a text with the character 0 as it is.
    case Shape::Text: return simple && !variantText(value).contains(QChar::Null);
    case Shape::Whole: return simple && isWholeNumber(value);
    case Shape::Flag: return simple;
    case Shape::List: return isList;
    case Shape::ListOrNull: return isList || isNull(value) || variantText(value).isEmpty();
    case Shape::Any: return true;
  }
  return false;
}

}  // namespace

void checkArguments(const Operation& operation, VariantArray& arguments)
{
  const auto& parameters = operation.parameters;
  bool valid = arguments.size() <= parameters.size();
  for (qsizetype i = 0; valid && i < parameters.size(); ++i) {
    valid = i < arguments.size() ? fits(parameters.at(i).shape, arguments.at(i)) : parameters.at(i).optional;
  }
  if (!valid) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Извикването на операция %1 не е с очакваните аргументи.")
                                               .arg(QLatin1StringView(operation.name)));
  }
  arguments.resize(parameters.size());
}

namespace {

// A user who is gone or was made inactive since he logged in.
void requireActive(Connection& db, const Session& session)
{
  const Variant active = db.value(QStringLiteral("SELECT Active FROM N_Users WHERE Id = ? AND Comp_Id = ?"),
                                  {session.userId, session.companyId});
  if (active.toInt() != 1) {
    throw RpcError(RpcError::NotLoggedIn, QStringLiteral("Потребителя не е активен!"));
  }
}

void requireSession(ServerCore& core, const Session& session)
{
  if (!session.loggedIn()) {
    throw RpcError(RpcError::NotLoggedIn, QStringLiteral("Моля, влезте в системата."));
  }
  if (!core.state().touch(session)) {
    throw RpcError(RpcError::NotLoggedIn,
                   QStringLiteral("Сесията е прекратена, защото дълго време не е работено или паролата е сменена. "
                                  "Въведеното не е записано; запишете си го и влезте отново в системата."));
  }
}

// What a repeated call is answered with: the result and the var arguments.
QByteArray keptAnswer(const Operation& operation, const Variant& result, const VariantArray& arguments)
{
  VariantArray returned;
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    returned.append((operation.returnedMask() >> i) & 1 ? arguments.at(i) : Variant());
  }
  return encodeValue(VariantArray{result, Variant(returned)});
}

// True when the call with this request id ran before; then result and arguments are those of that time.
bool answeredBefore(CallContext& call, const Operation& operation, const QString& requestId, Variant& result)
{
  auto row = call.db.prepare(QStringLiteral("SELECT Operation, Answer FROM srv_Request "
                                            "WHERE User_Id = ? AND Comp_Id = ? AND Request_Id = ?"));
  row->bind(0, call.session.userId);
  row->bind(1, call.session.companyId);
  row->bind(2, requestId);
  if (!row->step()) {
    return false;
  }
  const auto answer = decodeValue(row->value(1).toByteArray(), FrameLimits::ofServer());
  if (row->text(0) != QLatin1StringView(operation.name) || !answer) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Номерът на заявката вече е използван."));
  }
  result = answer->toList().value(0);
  const VariantArray returned = answer->toList().value(1).toList();
  for (qsizetype i = 0; i < qMin(returned.size(), call.arguments.size()); ++i) {
    if ((operation.returnedMask() >> i) & 1) {
      call.arguments[i] = returned.at(i);
    }
  }
  return true;
}

void keepAnswer(CallContext& call, const Operation& operation, const QString& requestId, const Variant& result)
{
  const QDateTime now = QDateTime::currentDateTime();
  call.db.execute(QStringLiteral("INSERT INTO srv_Request (User_Id, Comp_Id, Request_Id, Operation, Answer, CreatedAt) "
                                 "VALUES (?, ?, ?, ?, ?, ?)"),
                  {call.session.userId, call.session.companyId, requestId, QString::fromLatin1(operation.name),
                   keptAnswer(operation, result, call.arguments), now});
  call.db.execute(QStringLiteral("DELETE FROM srv_Request WHERE CreatedAt < ?"), {now.addDays(-2)});
}

Variant runWriting(CallContext& call, const Operation& operation, const QString& requestId)
{
  Transaction transaction(call.db);
  Variant result;
  if (!requestId.isEmpty() && answeredBefore(call, operation, requestId, result)) {
    return result;
  }
  result = operation.handler(call);
  if (!requestId.isEmpty()) {
    keepAnswer(call, operation, requestId, result);
  }
  transaction.commit();
  return result;
}

// A call that reads. Inside a transaction of the client's its failure must not end the transaction.
Variant runReading(CallContext& call, const Operation& operation)
{
  if (operation.runsOn == RunsOn::Transaction || !call.db.inTransaction()) {
    return operation.handler(call);
  }
  Transaction step(call.db, false);
  const Variant result = operation.handler(call);
  step.commit();
  return result;
}

// Whether the same call may be run again after the error without being done twice. Not inside a transaction of the
// client's, which cannot be repeated here.
bool mayRunAgain(const StoreError& error, const CallContext& call, const Operation& operation, const QString& requestId)
{
  if (call.db.inTransaction() || operation.runsOn == RunsOn::Transaction) {
    return false;
  }
  // A kept answer tells that a commit was done whose own answer was lost with the connection.
  return error.kind() == StoreError::Kind::Collision ||
         (error.kind() == StoreError::Kind::Unsettled && !requestId.isEmpty());
}

// Runs a call, and again when the database ended its transaction in favour of another one or was lost during the commit.
Variant runPatiently(CallContext& call, const Operation& operation, const QString& requestId)
{
  constexpr int attempts = 3;
  const VariantArray given = call.arguments;
  bool unsettled = false;
  for (int attempt = 1;; ++attempt) {
    try {
      return operation.runsOn == RunsOn::Writer ? runWriting(call, operation, requestId) : runReading(call, operation);
    } catch (const StoreError& error) {
      if (attempt < attempts && mayRunAgain(error, call, operation, requestId)) {
        unsettled = unsettled || error.kind() == StoreError::Kind::Unsettled;
        call.arguments = given;
        continue;
      }
      // The database did not come back to tell.
      if (unsettled && error.kind() == StoreError::Kind::Unreachable) {
        throw StoreError(StoreError::Kind::Unsettled, QString::fromUtf8(error.what()));
      }
      throw;
    }
  }
}

Variant runChecked(ServerCore& core, Connection& db, Session& session, const Operation& operation,
                   VariantArray& arguments, const QString& requestId)
{
  if (operation.needsLogIn()) {
    requireSession(core, session);
  }
  checkArguments(operation, arguments);
  if (requestId.size() > 64) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Номерът на заявката е твърде дълъг."));
  }
  if (operation.needsLogIn()) {
    requireActive(db, session);
  }
  CallContext call{core, session, db, core.metadata().current(db), arguments};
  return runPatiently(call, operation, requestId);
}

RpcError storeFailure(const Operation& operation, const StoreError& error)
{
  const QString incident = logIncident(operation.name, QString::fromUtf8(error.what()));
  switch (error.kind()) {
    case StoreError::Kind::Busy:
    case StoreError::Kind::Collision:
      return {RpcError::Internal, QStringLiteral("Сървърът е зает с друга операция. Опитайте отново след малко."), incident};
    case StoreError::Kind::Unreachable:
      return {RpcError::Internal, QStringLiteral("Сървърът няма връзка с базата данни. Опитайте отново след малко."), incident};
    case StoreError::Kind::Unsettled:
      return {RpcError::Unsettled, QStringLiteral("Връзката на сървъра с базата данни прекъсна по време на записа. Не е "
                                                  "известно дали е записано; запишете отново след малко."), incident};
    case StoreError::Kind::DiskFull:
      return {RpcError::Internal, QStringLiteral("Дискът на сървъра е пълен. Промените не са записани. Обърнете се към "
                                                 "системния администратор."), incident};
    default:
      return {RpcError::Internal, QStringLiteral("Грешка в сървъра. Обърнете се към системния администратор и "
                                                 "посочете номер %1.").arg(incident), incident};
  }
}

}  // namespace

Variant runOperation(ServerCore& core, Connection& db, Session& session, const Operation& operation,
                     VariantArray& arguments, const QString& requestId)
{
  try {
    return runChecked(core, db, session, operation, arguments, requestId);
  } catch (const RpcError& error) {
    logRefusal(session, operation, arguments, error);
    throw;
  } catch (const StoreError& error) {
    throw storeFailure(operation, error);
  } catch (const std::exception& error) {
    const QString incident = logIncident(operation.name, QString::fromUtf8(error.what()));
    throw RpcError(RpcError::Internal, QStringLiteral("Грешка в сървъра. Обърнете се към системния администратор и "
                                                      "посочете номер %1.").arg(incident), incident);
  }
}

}  // namespace kalvor::server
