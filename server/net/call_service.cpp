#include "server/net/call_service.h"

#include "rpc/frame.h"
#include "rpc/rpc_error.h"
#include "server/log.h"

namespace kalvor::server {

namespace {

QByteArray errorAnswer(quint64 id, const RpcError& error)
{
  return encodeError(id, {error.code(), error.message(), error.incident()});
}

RpcError lostTransaction()
{
  return {RpcError::Refused, QStringLiteral("Транзакцията е отменена, защото дълго време нямаше обръщения към сървъра.")};
}

// The answer's bytes; a result that cannot travel is an error of its own.
QByteArray answerBytes(const Frame& frame, const Variant& result, quint64 returned)
{
  try {
    return encodeAnswer(frame.id, result, frame.arguments, returned);
  } catch (const RpcError& error) {
    return errorAnswer(frame.id, error);
  }
}

}  // namespace

CallService::CallService(ServerCore& core, int workers, AnswerHandler handler)
    : core_(core),
      handler_(std::move(handler)),
      readers_(workers, [&core] { return core.openReader(); }),
      passwords_(1, [&core] { return core.openReader(); }),
      writer_([&core] { return core.openWriter(); })
{
}

CallService::~CallService() { stop(); }

void CallService::stop()
{
  readers_.stop();
  passwords_.stop();
  writer_.stop();
}

QByteArray CallService::figures()
{
  const auto line = [](const char* queue, size_t length) {
    return QByteArray("kalvor_queue_length{queue=\"") + queue + "\"} " + QByteArray::number(qulonglong(length)) + '\n';
  };
  return figures_.text() + "# HELP kalvor_queue_length Calls that wait for a thread.\n# TYPE kalvor_queue_length gauge\n" +
         line("readers", readers_.waiting()) + line("passwords", passwords_.waiting()) + line("writer", writer_.waiting());
}

void CallService::handle(PeerPtr peer, QByteArray item)
{
  peer->callBegan = std::chrono::steady_clock::now();
  readers_.post([this, peer = std::move(peer), item = std::move(item)](Connection& reader) { decode(peer, item, reader); });
}

void CallService::decode(const PeerPtr& peer, const QByteArray& item, Connection& reader)
{
  const FrameLimits limits = peer->session.loggedIn() ? FrameLimits::ofServer() : FrameLimits::beforeLogIn();
  QString reason;
  auto decoded = decodeFrame(item, limits, &reason);
  if (!decoded || decoded->kind != Frame::Kind::Call) {
    logEvent(LogLevel::Warning, "bad_frame", {{"peer", peer->session.peer}, {"reason", reason}});
    figures_.noteBadFrame();
    handler_(peer, {});
    return;
  }
  const auto frame = std::make_shared<Frame>(std::move(*decoded));
  const Operation* operation = findOperation(frame->operation);
  if (!operation) {
    logEvent(LogLevel::Warning, "unknown_operation", {{"peer", peer->session.peer}, {"operation", frame->operation.left(64)}});
    figures_.note("unknown", CallOutcome::Refused, std::chrono::steady_clock::now() - peer->callBegan);
    handler_(peer, errorAnswer(frame->id, {RpcError::UnknownOperation, QStringLiteral("Сървърът не познава операция „%1“.")
                                                                           .arg(frame->operation.left(64))}));
    return;
  }
  route(peer, frame, *operation, reader);
}

void CallService::route(const PeerPtr& peer, const FramePtr& frame, const Operation& operation, Connection& reader)
{
  const auto job = [this, peer, frame, &operation](Connection& db) { run(peer, *frame, operation, db); };
  if (operation.runsOn == RunsOn::Passwords) {
    passwords_.post(job);
  } else if (operation.runsOn != RunsOn::Reader || peer->inTransaction) {
    // Reads inside a transaction see what it has written.
    writer_.post(peer->id, job);
  } else {
    run(peer, *frame, operation, reader);
  }
}

void CallService::run(const PeerPtr& peer, Frame& frame, const Operation& operation, Connection& db)
{
  QByteArray answer;
  CallOutcome outcome = CallOutcome::Ok;
  try {
    // What was meant for a transaction must not be done without it.
    if (peer->transactionLost && operation.runsOn != RunsOn::Transaction) {
      throw lostTransaction();
    }
    const Variant result = operation.runsOn == RunsOn::Transaction
                               ? runTransactionCall(*peer, frame, operation, db)
                               : runOperation(core_, db, peer->session, operation, frame.arguments, frame.requestId);
    answer = answerBytes(frame, result, operation.returnedMask());
  } catch (const RpcError& error) {
    outcome = error.code() == RpcError::Internal ? CallOutcome::Failed : CallOutcome::Refused;
    answer = errorAnswer(frame.id, error);
  } catch (const std::exception& error) {
    outcome = CallOutcome::Failed;
    const QString incident = logIncident(operation.name, QString::fromUtf8(error.what()));
    answer = errorAnswer(frame.id, {RpcError::Internal, QStringLiteral("Грешка в сървъра."), incident});
  }
  figures_.note(operation.name, outcome, std::chrono::steady_clock::now() - peer->callBegan);
  handler_(peer, answer);
}

Variant CallService::runTransactionCall(PeerState& peer, Frame& frame, const Operation& operation, Connection& db)
{
  const bool starts = qstrcmp(operation.name, "trStart") == 0;
  const bool lost = peer.transactionLost.exchange(false);
  if (lost && !starts) {
    throw lostTransaction();
  }
  if (peer.session.loggedIn() && starts == peer.inTransaction) {
    throw RpcError(RpcError::Refused, starts ? QStringLiteral("Вече има започната транзакция.")
                                             : QStringLiteral("Няма започната транзакция."));
  }
  try {
    const Variant result = runOperation(core_, db, peer.session, operation, frame.arguments);
    peer.inTransaction = starts;
    writer_.setOwner(starts ? peer.id : 0);
    return result;
  } catch (const RpcError&) {
    if (peer.inTransaction) {
      db.rollback();
      peer.inTransaction = false;
      writer_.setOwner(0);
    }
    throw;
  }
}

void CallService::abandonTransaction(PeerPtr peer)
{
  writer_.post(peer->id, [this, peer](Connection& db) {
    if (peer->inTransaction) {
      db.rollback();
      peer->inTransaction = false;
      peer->transactionLost = true;
      writer_.setOwner(0);
      logEvent(LogLevel::Warning, "transaction_abandoned", {{"user", peer->session.userId}, {"peer", peer->session.peer}});
    }
  });
}

}  // namespace kalvor::server
