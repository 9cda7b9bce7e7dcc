// One connection of a client.
#pragma once

#include <QElapsedTimer>
#include <QSslSocket>
#include <deque>

#include "rpc/frame_reader.h"
#include "server/net/call_service.h"

namespace kalvor::server {

class ClientConnection : public QObject {
  Q_OBJECT
 public:
  // With a QSslSocket nothing is answered before it is encrypted; a handshake that is not over in time ends it.
  ClientConnection(QTcpSocket* socket, quint64 id, CallService& service, QObject* parent);

  const PeerPtr& peer() const { return peer_; }
  bool busy() const { return busy_; }
  qint64 silentMs() const { return silence_.elapsed(); }
  // The call under way has its answer; an empty one closes the connection.
  void finished(const QByteArray& answer);
  void drop();

 signals:
  void gone(quint64 id);

 private:
  void beginEncryption(QSslSocket& socket);
  bool readsPlainly();
  void refusePlaintext();
  void readBytes();
  void readFrames();
  void startNext();
  qint64 unsentBytes() const;

  quint64 id_;
  QTcpSocket* socket_;
  QSslSocket* secure_;  // null: plain text is spoken
  CallService& service_;
  FrameReader reader_;
  PeerPtr peer_ = std::make_shared<PeerState>();
  std::deque<QByteArray> waiting_;
  bool busy_ = false;
  QElapsedTimer silence_;
};

}  // namespace kalvor::server
