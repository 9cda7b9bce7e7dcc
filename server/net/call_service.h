// From the bytes of a call to the bytes of its answer: decoded, routed to the thread that suits the operation, run.
#pragma once

#include <QByteArray>
#include <atomic>

#include "server/net/call_figures.h"
#include "server/net/job_threads.h"
#include "server/operations/operation.h"

namespace kalvor {
struct Frame;
}

namespace kalvor::server {

// The server's side of one connection. Its calls run one after another; nobody else touches it meanwhile.
struct PeerState {
  quint64 id = 0;                  // never 0
  Session session;
  std::atomic<bool> inTransaction = false;
  std::atomic<bool> transactionLost = false;  // rolled back because the peer kept silent; until it is told so
  std::chrono::steady_clock::time_point callBegan;
};
using PeerPtr = std::shared_ptr<PeerState>;

class KALVOR_SERVER CallService {
 public:
  // An empty answer: the bytes were no call, and the connection must be closed. Called on any thread.
  using AnswerHandler = std::function<void(const PeerPtr& peer, QByteArray answer)>;

  CallService(ServerCore& core, int workers, AnswerHandler handler);
  ~CallService();

  void handle(PeerPtr peer, QByteArray item);
  // Ends a transaction that nobody will end: its peer has gone or keeps silent.
  void abandonTransaction(PeerPtr peer);
  void stop();
  // Figures of the calls and of the queues that they wait in, in the text format of Prometheus.
  QByteArray figures();

 private:
  using FramePtr = std::shared_ptr<Frame>;
  void decode(const PeerPtr& peer, const QByteArray& item, Connection& reader);
  void route(const PeerPtr& peer, const FramePtr& frame, const Operation& operation, Connection& reader);
  void run(const PeerPtr& peer, Frame& frame, const Operation& operation, Connection& db);
  Variant runTransactionCall(PeerState& peer, Frame& frame, const Operation& operation, Connection& db);

  ServerCore& core_;
  AnswerHandler handler_;
  CallFigures figures_;
  JobThreads readers_;
  JobThreads passwords_;
  WriterThread writer_;
};

}  // namespace kalvor::server
