// One connection of a client.
#pragma once

#include <QElapsedTimer>
#include <QSslSocket>
#include <deque>

#include "rpc/frame_reader.h"
#include "server/net/call_service.h"
#include "server/net/connection_limits.h"

namespace kalvor::server {

class ClientConnection : public QObject {
  Q_OBJECT
 public:
  // With a QSslSocket nothing is answered before it is encrypted; a handshake that is not over in time ends it.
  ClientConnection(QTcpSocket* socket, quint64 id, CallService& service, QObject* parent);

  const PeerPtr& peer() const { return peer_; }
  bool busy() const { return busy_; }
  const QString& address() const { return address_; }
  // Whether somebody had logged in when the last call was answered; the session itself is its call's meanwhile.
  bool knownUser() const { return !user_.isEmpty(); }
  const QString& user() const { return user_; }
  bool everCalled() const { return everCalled_; }
  // A call that does not come to its end, or answers that are not taken.
  bool stalled(const ConnectionLimits& limits) const;
  qint64 silentMs() const { return silence_.elapsed(); }
  // The call under way has its answer; an empty one closes the connection.
  void finished(const QByteArray& answer);
  void drop();

 signals:
  void gone(quint64 id);

 private:
  bool hasRoom() const;
  void takeCalls();
  void beginEncryption(QSslSocket& socket);
  bool readsPlainly();
  void refusePlaintext();
  void readBytes();
  void readFrames();
  void noteSent();
  void startNext();
  qint64 unsentBytes() const;

  quint64 id_;
  QTcpSocket* socket_;
  QSslSocket* secure_;  // null: plain text is spoken
  CallService& service_;
  FrameReader reader_;
  PeerPtr peer_ = std::make_shared<PeerState>();
  QString address_;
  std::deque<QByteArray> waiting_;
  qint64 waitingBytes_ = 0;
  bool paused_ = false;      // nothing is read until calls have had their turn
  QString user_;
  bool everCalled_ = false;
  QElapsedTimer incoming_;   // since the frame under way began; invalid: none is
  QElapsedTimer outgoing_;   // since the first unsent answer was written; invalid: all are sent
  qint64 outgoingBytes_ = 0;
  bool busy_ = false;
  QElapsedTimer silence_;
};

}  // namespace kalvor::server
