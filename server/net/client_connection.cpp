#include "server/net/client_connection.h"

#include <QHostAddress>

#include "rpc/frame.h"
#include "server/log.h"

namespace kalvor::server {

namespace {

constexpr size_t maxWaitingCalls = 16;
constexpr qint64 maxUnsentBytes = 8 * 1024 * 1024;
constexpr qint64 socketBuffer = 1024 * 1024;

}  // namespace

ClientConnection::ClientConnection(QTcpSocket* socket, quint64 id, CallService& service, QObject* parent)
    : QObject(parent), socket_(socket), service_(service), reader_(FrameLimits::beforeLogIn().maxBytes)
{
  socket_->setParent(this);
  socket_->setReadBufferSize(socketBuffer);
  socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
  socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
  peer_->id = id;
  peer_->session.peer = socket_->peerAddress().toString();
  silence_.start();
  connect(socket_, &QTcpSocket::readyRead, this, &ClientConnection::readFrames);
  connect(socket_, &QTcpSocket::bytesWritten, this, &ClientConnection::startNext);
  connect(socket_, &QTcpSocket::disconnected, this, [this, id] { emit gone(id); });
}

void ClientConnection::readFrames()
{
  while (waiting_.size() < maxWaitingCalls && socket_->bytesAvailable() > 0) {
    const qint64 size = socket_->bytesAvailable();
    const qint64 got = socket_->read(reader_.writeBuffer(qsizetype(size)), size);
    reader_.bytesWritten(qsizetype(qMax<qint64>(0, got)));
    while (const auto item = reader_.next()) {
      waiting_.push_back(item->toByteArray());
    }
    if (reader_.broken()) {
      logEvent(LogLevel::Warning, "bad_frame", {{"peer", peer_->session.peer}, {"reason", QStringLiteral("length")}});
      drop();
      return;
    }
  }
  startNext();
}

void ClientConnection::startNext()
{
  if (busy_ || waiting_.empty() || socket_->bytesToWrite() > maxUnsentBytes) {
    return;
  }
  busy_ = true;
  QByteArray item = std::move(waiting_.front());
  waiting_.pop_front();
  service_.handle(peer_, std::move(item));
}

void ClientConnection::finished(const QByteArray& answer)
{
  busy_ = false;
  silence_.restart();
  if (answer.isEmpty()) {
    drop();
    return;
  }
  if (peer_->session.loggedIn()) {
    reader_.setMaxBytes(FrameLimits::ofServer().maxBytes);
  }
  socket_->write(answer);
  readFrames();
}

}  // namespace kalvor::server
