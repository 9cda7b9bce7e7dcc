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
  IoServer(ServerCore& core, int workers);
  ~IoServer() override;

  // Empty when it listens, else why it does not.
  QString listen(const QHostAddress& address, quint16 port);
  quint16 port() const { return server_.serverPort(); }
  void close();
  // Figures of calls, queues and connections, in the text format of Prometheus.
  QByteArray figures();

 private:
  void accept();
  void finished(const PeerPtr& peer, const QByteArray& answer);
  void lookAfterConnections();

  QTcpServer server_{this};
  QTimer timer_{this};
  QHash<quint64, ClientConnection*> connections_;
  quint64 lastId_ = 0;
  CallService service_;
};

}  // namespace kalvor::server
