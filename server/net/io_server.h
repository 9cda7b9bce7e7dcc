// The sockets, all in one thread: cuts frames, keeps the order of a connection's calls, writes answers.
#pragma once

#include <QHash>
#include <QTcpServer>
#include <QTimer>

#include "server/net/client_connection.h"

namespace kalvor::server {

class IoServer : public QObject {
  Q_OBJECT
 public:
  IoServer(ServerCore& core, int workers, const ConnectionLimits& limits = {});
  ~IoServer() override;

  // Empty when it listens, else why it does not.
  QString listen(const QHostAddress& address, quint16 port);
  quint16 port() const { return server_.serverPort(); }
  void close();

 private:
  void accept();
  bool mayConnect(const QString& peer) const;
  void finished(const PeerPtr& peer, const QByteArray& answer);
  void lookAfterConnections();

  ConnectionLimits limits_;
  QTcpServer server_{this};
  QTimer timer_{this};
  QHash<quint64, ClientConnection*> connections_;
  quint64 lastId_ = 0;
  CallService service_;
};

}  // namespace kalvor::server
