#include "server/net/io_server.h"

#include "server/log.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxConnections = 1000;
constexpr qint64 silentInTransactionMs = 30 * 1000;

}  // namespace

IoServer::IoServer(ServerCore& core, int workers, const ConnectionLimits& limits)
    : limits_(limits), service_(core, workers, [this](const PeerPtr& peer, QByteArray answer) {
        QMetaObject::invokeMethod(this, [this, peer, answer = std::move(answer)] { finished(peer, answer); },
                                  Qt::QueuedConnection);
      })
{
  connect(&server_, &QTcpServer::newConnection, this, &IoServer::accept);
  connect(&timer_, &QTimer::timeout, this, &IoServer::lookAfterConnections);
}

IoServer::~IoServer() { service_.stop(); }

QString IoServer::listen(const QHostAddress& address, quint16 port)
{
  timer_.start(limits_.lookAfterEveryMs);
  return server_.listen(address, port) ? QString() : server_.errorString();
}

void IoServer::close()
{
  server_.close();
  timer_.stop();
  service_.stop();
  for (ClientConnection* connection : std::as_const(connections_)) {
    connection->disconnect(this);
    connection->drop();
    delete connection;
  }
  connections_.clear();
}

void IoServer::accept()
{
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    if (connections_.size() >= maxConnections) {
      logEvent(LogLevel::Warning, "too_many_connections");
      socket->abort();
      socket->deleteLater();
      continue;
    }
    if (!mayConnect(socket->peerAddress().toString())) {
      socket->abort();
      socket->deleteLater();
      continue;
    }
    auto* connection = new ClientConnection(socket, ++lastId_, service_, this);
    connections_.insert(lastId_, connection);
    connect(connection, &ClientConnection::gone, this, [this](quint64 id) {
      ClientConnection* left = connections_.take(id);
      if (!left) {
        return;
      }
      // With a call under way, finished() sees to the transaction.
      if (!left->busy() && left->peer()->inTransaction) {
        service_.abandonTransaction(left->peer());
      }
      left->deleteLater();
    });
  }
}

// Nobody takes the places of everybody: so many connections an address, fewer of those that have not logged in.
bool IoServer::mayConnect(const QString& peer) const
{
  int all = 0;
  int strangers = 0;
  for (const ClientConnection* connection : connections_) {
    if (connection->address() == peer) {
      ++all;
      strangers += !connection->knownUser();
    }
  }
  if (all < limits_.ofOnePeer && strangers < limits_.beforeLogInOfOnePeer) {
    return true;
  }
  logEvent(LogLevel::Warning, "too_many_connections", {{"peer", peer}, {"all", QString::number(all)}});
  return false;
}

void IoServer::finished(const PeerPtr& peer, const QByteArray& answer)
{
  if (ClientConnection* connection = connections_.value(peer->id)) {
    connection->finished(answer);
  } else if (peer->inTransaction) {
    service_.abandonTransaction(peer);
  }
}

void IoServer::lookAfterConnections()
{
  for (ClientConnection* connection : connections_.values()) {
    if (connection->stalled(limits_)) {
      logEvent(LogLevel::Warning, "stalled", {{"peer", connection->address()}, {"user", connection->user()}});
      connection->drop();
      continue;
    }
    if (connection->busy()) {
      continue;
    }
    const PeerPtr& peer = connection->peer();
    if (peer->inTransaction && connection->silentMs() > silentInTransactionMs) {
      service_.abandonTransaction(peer);
    } else if (!connection->knownUser() &&
               connection->silentMs() > (connection->everCalled() ? limits_.silentBeforeLogInMs : limits_.firstCallMs)) {
      connection->drop();
    }
  }
}

}  // namespace kalvor::server
