#include "server/net/io_server.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <stdexcept>

#include "server/log.h"

namespace kalvor::server {

namespace {

constexpr qsizetype maxConnections = 1000;
constexpr qint64 silentBeforeLogInMs = 30 * 60 * 1000;
constexpr qint64 silentInTransactionMs = 30 * 1000;
constexpr int lookAfterEveryMs = 5000;

// A key in PEM does not name its algorithm to the toolkit.
QSslKey keyOf(const QByteArray& pem)
{
  for (const QSsl::KeyAlgorithm algorithm : {QSsl::Ec, QSsl::Rsa, QSsl::Dsa}) {
    const QSslKey key(pem, algorithm);
    if (!key.isNull()) {
      return key;
    }
  }
  return {};
}

}  // namespace

void Listener::incomingConnection(qintptr descriptor)
{
  QTcpSocket* socket = nullptr;
  if (encryption) {
    auto* secure = new QSslSocket(this);
    secure->setSslConfiguration(*encryption);
    socket = secure;
  } else {
    socket = new QTcpSocket(this);
  }
  if (!socket->setSocketDescriptor(descriptor)) {
    delete socket;
    return;
  }
  addPendingConnection(socket);
}

IoServer::IoServer(ServerCore& core, int workers)
    : service_(core, workers, [this](const PeerPtr& peer, QByteArray answer) {
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
  timer_.start(lookAfterEveryMs);
  return server_.listen(address, port) ? QString() : server_.errorString();
}

void IoServer::encryptWith(const ServerCertificate& certificate)
{
  if (!QSslSocket::supportsSsl()) {
    throw std::runtime_error("the library for TLS is missing (OpenSSL 3)");
  }
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setProtocol(QSsl::TlsV1_2OrLater);
  configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
  configuration.setLocalCertificateChain(QSslCertificate::fromData(certificate.certificate, QSsl::Pem));
  configuration.setPrivateKey(keyOf(certificate.key));
  if (configuration.privateKey().isNull() || configuration.localCertificate().isNull()) {
    throw std::runtime_error("the certificate or its key is of a kind that cannot be used");
  }
  server_.encryption = configuration;
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

QByteArray IoServer::figures()
{
  return service_.figures() + "# HELP kalvor_connections Connections of clients.\n# TYPE kalvor_connections gauge\n"
         "kalvor_connections " + QByteArray::number(connections_.size()) + '\n';
}

void IoServer::accept()
{
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    if (!makeRoom()) {
      logEvent(LogLevel::Warning, "too_many_connections");
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

// When all places are taken, whoever has not logged in and has been silent longest goes: nobody can fill the server
// with connections that say nothing.
bool IoServer::makeRoom()
{
  if (connections_.size() < maxConnections) {
    return true;
  }
  ClientConnection* oldest = nullptr;
  for (ClientConnection* connection : std::as_const(connections_)) {
    const bool idle = !connection->busy() && !connection->peer()->session.loggedIn();
    if (idle && (!oldest || connection->silentMs() > oldest->silentMs())) {
      oldest = connection;
    }
  }
  if (oldest) {
    oldest->drop();
  }
  return oldest;
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
    if (connection->busy()) {
      continue;
    }
    const PeerPtr& peer = connection->peer();
    if (peer->inTransaction && connection->silentMs() > silentInTransactionMs) {
      service_.abandonTransaction(peer);
    } else if (!peer->session.loggedIn() && connection->silentMs() > silentBeforeLogInMs) {
      connection->drop();
    }
  }
}

}  // namespace kalvor::server
