// The sockets, all in one thread: cuts frames, keeps the order of a connection's calls, writes answers.
#pragma once

#include <QHash>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTimer>

#include "server/net/certificate.h"
#include "server/net/client_connection.h"

namespace kalvor::server {

// Hands out the sockets that it accepts as they are to be spoken on.
class Listener : public QTcpServer {
 public:
  using QTcpServer::QTcpServer;
  std::optional<QSslConfiguration> encryption;  // nothing: plain text

 protected:
  void incomingConnection(qintptr descriptor) override;
};

class IoServer : public QObject {
  Q_OBJECT
 public:
  IoServer(ServerCore& core, int workers);
  ~IoServer() override;

  // Before listening: TLS 1.2 or newer with this certificate. Throws std::runtime_error when there is no TLS.
  void encryptWith(const ServerCertificate& certificate);
  // Empty when it listens, else why it does not.
  QString listen(const QHostAddress& address, quint16 port);
  quint16 port() const { return server_.serverPort(); }
  void close();
  // Figures of calls, queues and connections, in the text format of Prometheus.
  QByteArray figures();

 private:
  void accept();
  bool makeRoom();
  void finished(const PeerPtr& peer, const QByteArray& answer);
  void lookAfterConnections();

  Listener server_{this};
  QTimer timer_{this};
  QHash<quint64, ClientConnection*> connections_;
  quint64 lastId_ = 0;
  CallService service_;
};

}  // namespace kalvor::server
