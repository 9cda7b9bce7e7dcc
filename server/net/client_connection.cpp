#include "server/net/client_connection.h"

#include <QHostAddress>
#include <QTimer>

#include "rpc/frame.h"
#include "rpc/rpc_error.h"
#include "server/log.h"

namespace kalvor::server {

namespace {

constexpr size_t maxWaitingCalls = 16;
constexpr qint64 maxWaitingBytes = 1024 * 1024;  // of whole calls behind the one under way; one may be larger
constexpr qint64 maxUnsentBytes = 8 * 1024 * 1024;
constexpr qint64 socketBuffer = 1024 * 1024;
constexpr int handshakeMs = 5000;
constexpr char handshakeRecord = 0x16;  // the first byte of TLS; the first frame of a client begins with 0

QString encryptedOnly()
{
  return QStringLiteral("Сървърът приема само защитени връзки (TLS). Стартирайте програмата с опцията --tls.");
}

}  // namespace

ClientConnection::ClientConnection(QTcpSocket* socket, quint64 id, CallService& service, QObject* parent)
    : QObject(parent),
      id_(id),
      socket_(socket),
      secure_(qobject_cast<QSslSocket*>(socket)),
      service_(service),
      reader_(FrameLimits::beforeLogIn().maxBytes)
{
  socket_->setParent(this);
  socket_->setReadBufferSize(socketBuffer);
  socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
  socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
  peer_->id = id;
  address_ = socket_->peerAddress().toString();
  peer_->session.peer = address_;
  silence_.start();
  connect(socket_, &QTcpSocket::readyRead, this, &ClientConnection::readBytes);
  connect(socket_, &QTcpSocket::bytesWritten, this, &ClientConnection::noteSent);
  connect(socket_, &QTcpSocket::disconnected, this, [this] { emit gone(id_); });
  if (secure_) {
    beginEncryption(*secure_);
  }
}

// The handshake itself waits for the first byte, which tells a client that does not encrypt.
void ClientConnection::beginEncryption(QSslSocket& socket)
{
  connect(&socket, &QSslSocket::encryptedBytesWritten, this, &ClientConnection::noteSent);
  connect(&socket, &QSslSocket::encrypted, this, [this] { silence_.restart(); });
  connect(&socket, &QSslSocket::errorOccurred, this, [this, &socket](QAbstractSocket::SocketError error) {
    if (error == QAbstractSocket::SslHandshakeFailedError) {
      logEvent(LogLevel::Warning, "handshake_failed", {{"peer", peer_->session.peer}, {"reason", socket.errorString()}});
      // Not while the socket is still in its handshake.
      QMetaObject::invokeMethod(this, &ClientConnection::drop, Qt::QueuedConnection);
    }
  });
  QTimer::singleShot(handshakeMs, this, [this, &socket] {
    if (!socket.isEncrypted()) {
      logEvent(LogLevel::Warning, "handshake_late", {{"peer", peer_->session.peer}});
      drop();
    }
  });
}

void ClientConnection::drop()
{
  socket_->abort();
  emit gone(id_);
}

bool ClientConnection::readsPlainly() { return !secure_ || secure_->isEncrypted(); }

void ClientConnection::readBytes()
{
  if (readsPlainly()) {
    readFrames();
  } else if (secure_->mode() == QSslSocket::UnencryptedMode) {
    char first = 0;
    if (secure_->peek(&first, 1) == 1 && first == handshakeRecord) {
      secure_->startServerEncryption();
    } else {
      refusePlaintext();
    }
  }
}

// A call in plain text is told why it gets no answer; other bytes just end the connection.
void ClientConnection::refusePlaintext()
{
  reader_.append(socket_->read(FrameLimits::beforeLogIn().maxBytes));
  const auto item = reader_.next();
  if (!item && !reader_.broken()) {
    return;
  }
  logEvent(LogLevel::Warning, "not_encrypted", {{"peer", peer_->session.peer}});
  const auto frame = item ? decodeFrame(*item, FrameLimits::beforeLogIn()) : std::nullopt;
  if (!frame || frame->kind != Frame::Kind::Call) {
    drop();
    return;
  }
  socket_->write(encodeError(frame->id, {RpcError::EncryptedOnly, encryptedOnly(), {}}));
  socket_->disconnectFromHost();
}

bool ClientConnection::hasRoom() const { return waiting_.size() < maxWaitingCalls && waitingBytes_ < maxWaitingBytes; }

void ClientConnection::takeCalls()
{
  while (hasRoom()) {
    const auto item = reader_.next();
    if (!item) {
      break;
    }
    waiting_.push_back(item->toByteArray());
    waitingBytes_ += item->size();
    everCalled_ = true;
    incoming_.invalidate();
  }
  if (reader_.buffered() > 0 && !incoming_.isValid()) {
    incoming_.start();
  }
}

void ClientConnection::readFrames()
{
  if (paused_ && incoming_.isValid()) {
    // Nobody took what the client sent meanwhile.
    incoming_.restart();
  }
  takeCalls();
  while (hasRoom() && !reader_.broken() && socket_->bytesAvailable() > 0) {
    const qint64 size = socket_->bytesAvailable();
    const qint64 got = socket_->read(reader_.writeBuffer(qsizetype(size)), size);
    reader_.bytesWritten(qsizetype(qMax<qint64>(0, got)));
    takeCalls();
  }
  if (reader_.broken()) {
    logEvent(LogLevel::Warning, "bad_frame", {{"peer", address_}, {"reason", QStringLiteral("length")}});
    drop();
    return;
  }
  paused_ = !hasRoom();
  startNext();
}

qint64 ClientConnection::unsentBytes() const
{
  return socket_->bytesToWrite() + (secure_ ? secure_->encryptedBytesToWrite() : 0);
}

void ClientConnection::startNext()
{
  if (busy_ || waiting_.empty() || unsentBytes() > maxUnsentBytes) {
    return;
  }
  busy_ = true;
  QByteArray item = std::move(waiting_.front());
  waiting_.pop_front();
  waitingBytes_ -= item.size();
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
    user_ = peer_->session.userId;
    reader_.setMaxBytes(FrameLimits::ofServer().maxBytes);
  }
  if (!outgoing_.isValid()) {
    outgoing_.start();
  }
  outgoingBytes_ += answer.size();
  socket_->write(answer);
  readFrames();
}

void ClientConnection::noteSent()
{
  if (unsentBytes() == 0) {
    outgoing_.invalidate();
    outgoingBytes_ = 0;
  }
  // What was not read while answers waited may go on now.
  if (readsPlainly()) {
    readFrames();
  }
}

bool ClientConnection::stalled(const ConnectionLimits& limits) const
{
  const auto tooSlow = [&](const QElapsedTimer& since, qint64 bytes) {
    return since.isValid() && since.elapsed() > limits.transferMs + bytes * 1000 / limits.bytesASecond;
  };
  // While calls wait for their turn nothing is read, so that what has not come is not the client's fault.
  return (!paused_ && tooSlow(incoming_, reader_.buffered())) || tooSlow(outgoing_, qMax<qint64>(0, outgoingBytes_ - unsentBytes()));
}

}  // namespace kalvor::server
