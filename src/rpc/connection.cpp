#include "rpc/connection.h"

#include <QCryptographicHash>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QThread>
#include <exception>

#include "rpc/frame.h"
#include "rpc/frame_reader.h"

namespace kalvor {
namespace {

constexpr qsizetype readChunk = 64 * 1024;

struct SocketErrorText {
  QAbstractSocket::SocketError error;
  QStringView text;
};
constexpr SocketErrorText socketErrorTexts[] = {
    {QAbstractSocket::ConnectionRefusedError, u"на този адрес и порт не отговаря сървър"},
    {QAbstractSocket::RemoteHostClosedError, u"сървърът затвори връзката"},
    {QAbstractSocket::HostNotFoundError, u"няма такъв адрес"},
    {QAbstractSocket::SocketTimeoutError, u"сървърът не отговори навреме"},
    {QAbstractSocket::NetworkError, u"мрежата не е достъпна"}};

QString whyOf(const QAbstractSocket& socket)
{
  for (const SocketErrorText& known : socketErrorTexts)
    if (known.error == socket.error())
      return known.text.toString();
  return socket.errorString();
}

[[noreturn]] void connectionLost(const QString& why)
{
  throw RpcError(RpcError::ConnectionLost, QStringLiteral("Връзката със сървъра прекъсна: %1.").arg(why));
}

}  // namespace

struct ConnectionBroker::Private {
  explicit Private(SocketConnection* connection) : place(connection) {}

  bool open() const { return socket && socket->state() == QAbstractSocket::ConnectedState; }
  bool stillThere();
  bool encrypts() const;
  void connectSocket();
  void encrypt(QSslSocket& fresh);
  [[noreturn]] void unreachable(const QString& why) const;
  void drop();
  void resume();
  void prepare();
  void send(const QByteArray& frame);
  Frame receive(quint64 id);
  void readMore();
  Frame exchange(const QString& operation, const VariantArray& arguments, const QString& requestId);
  Variant call(const QString& operation, VariantArray& arguments, const QString& requestId);
  void followTransaction(const QString& operation, bool succeeded);

  // Runs the function in the thread of this object; what it throws is thrown here.
  template <typename Function>
  void atHome(Function function);

  SocketConnection* place;
  QObject home;  // lives in the thread that made the broker
  std::unique_ptr<QTcpSocket> socket;
  FrameReader reader{FrameLimits::ofClient().maxBytes};
  QString session;
  quint64 lastId = 0;
  bool inTransaction = false;
};

template <typename Function>
void ConnectionBroker::Private::atHome(Function function)
{
  if (QThread::currentThread() == home.thread())
    return function();
  std::exception_ptr error;
  const auto guarded = [&] {
    try {
      function();
    } catch (...) {
      error = std::current_exception();
    }
  };
  if (!QMetaObject::invokeMethod(&home, guarded, Qt::BlockingQueuedConnection))
    throw RpcError(RpcError::Unreachable, QStringLiteral("Програмата се затваря."));
  if (error)
    std::rethrow_exception(error);
}

// Notices without an event loop that the server has closed the connection since the last call.
bool ConnectionBroker::Private::stillThere()
{
  if (!open())
    return false;
  socket->waitForReadyRead(0);
  return open() && socket->bytesAvailable() == 0;
}

void ConnectionBroker::Private::drop()
{
  if (socket)
    socket->abort();
  socket.reset();
  reader = FrameReader(FrameLimits::ofClient().maxBytes);
  inTransaction = false;
}

void ConnectionBroker::Private::unreachable(const QString& why) const
{
  throw RpcError(RpcError::Unreachable,
                 QStringLiteral("Няма връзка със сървъра %1:%2: %3.").arg(place->Address).arg(place->Port).arg(why));
}

bool ConnectionBroker::Private::encrypts() const
{
  return place->trust ? place->trust->encrypts(place->Address, place->Port) : !isLoopbackAddress(place->Address);
}

void ConnectionBroker::Private::connectSocket()
{
  drop();
  const bool secure = encrypts();
  std::unique_ptr<QTcpSocket> fresh(secure ? new QSslSocket : new QTcpSocket);
  fresh->connectToHost(place->Address, place->Port);
  if (!fresh->waitForConnected(place->connectTimeoutMs))
    unreachable(whyOf(*fresh));
  fresh->setSocketOption(QAbstractSocket::LowDelayOption, 1);
  fresh->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
  if (secure)
    encrypt(static_cast<QSslSocket&>(*fresh));
  socket = std::move(fresh);
}

// The certificate counts by its fingerprint alone: who signed it, for which name and until when does not matter.
void ConnectionBroker::Private::encrypt(QSslSocket& fresh)
{
  if (!QSslSocket::supportsSsl())
    unreachable(QStringLiteral("на този компютър липсва библиотеката за защитени връзки (TLS)"));
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setProtocol(QSsl::TlsV1_2OrLater);
  configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
  fresh.setSslConfiguration(configuration);
  fresh.startClientEncryption();
  if (!fresh.waitForEncrypted(place->connectTimeoutMs)) {
    if (fresh.error() == QAbstractSocket::RemoteHostClosedError)
      unreachable(QStringLiteral("сървърът не приема защитени връзки (TLS); ако е пуснат с --plaintext, стартирайте и "
                                 "програмата с --plaintext"));
    if (fresh.state() == QAbstractSocket::ConnectedState)
      unreachable(QStringLiteral("сървърът не отговори навреме на договарянето на защитена връзка (TLS)"));
    unreachable(QStringLiteral("защитената връзка (TLS) не може да бъде договорена: %1").arg(fresh.errorString()));
  }
  const QByteArray fingerprint = fresh.peerCertificate().digest(QCryptographicHash::Sha256);
  if (!place->trust)
    throw RpcError(RpcError::Untrusted, QStringLiteral("Сертификатът на сървъра %1:%2 не е познат.")
                                            .arg(place->Address).arg(place->Port));
  place->trust->check(place->Address, place->Port, fingerprint);
  // A person may have thought about it for long.
  if (fresh.state() != QAbstractSocket::ConnectedState)
    unreachable(whyOf(fresh));
}

void ConnectionBroker::Private::resume()
{
  if (session.isEmpty())
    return;
  const Frame answer = exchange(QStringLiteral("ResumeSession"), {session}, {});
  if (!answer.error && !isNull(answer.result) && answer.result.toInt() == 0)
    return;
  drop();
  if (answer.error)
    throw RpcError(answer.error->code, answer.error->text, answer.error->incident);
  throw RpcError(RpcError::NotLoggedIn, QStringLiteral("Сесията е прекратена. Моля, влезте отново в системата."));
}

void ConnectionBroker::Private::prepare()
{
  if (stillThere())
    return;
  if (inTransaction) {
    drop();
    connectionLost(QStringLiteral("започнатата транзакция е отменена"));
  }
  connectSocket();
  resume();
}

void ConnectionBroker::Private::send(const QByteArray& frame)
{
  const auto* secure = qobject_cast<QSslSocket*>(socket.get());
  bool sent = socket->write(frame) == frame.size();
  while (sent && (socket->bytesToWrite() > 0 || (secure && secure->encryptedBytesToWrite() > 0)))
    sent = socket->waitForBytesWritten(place->answerTimeoutMs);
  if (sent)
    return;
  const QString why = whyOf(*socket);
  drop();
  connectionLost(why);
}

// The time-out is for the next bytes, not for all of a long answer.
void ConnectionBroker::Private::readMore()
{
  if (socket->bytesAvailable() == 0 && !socket->waitForReadyRead(place->answerTimeoutMs)) {
    const bool late = open();
    const QString why = whyOf(*socket);
    drop();
    if (late)
      throw RpcError(RpcError::Timeout, QStringLiteral("Сървърът не отговори навреме."));
    connectionLost(why);
  }
  const qsizetype size = qMax(readChunk, qsizetype(socket->bytesAvailable()));
  const qint64 got = socket->read(reader.writeBuffer(size), size);
  reader.bytesWritten(qMax(qint64(0), got));
}

Frame ConnectionBroker::Private::receive(quint64 id)
{
  while (true) {
    if (const auto item = reader.next()) {
      auto frame = decodeFrame(*item, FrameLimits::ofClient());
      if (frame && frame->kind == Frame::Kind::Answer && frame->id == id)
        return std::move(*frame);
      drop();
      throw RpcError(RpcError::BadFrame, QStringLiteral("Отговорът на сървъра не може да бъде разчетен."));
    }
    if (reader.broken()) {
      drop();
      throw RpcError(RpcError::BadFrame, QStringLiteral("Отговорът на сървъра не може да бъде разчетен."));
    }
    readMore();
  }
}

Frame ConnectionBroker::Private::exchange(const QString& operation, const VariantArray& arguments,
                                          const QString& requestId)
{
  const quint64 id = ++lastId;
  send(encodeCall(id, operation, arguments, requestId));
  return receive(id);
}

void ConnectionBroker::Private::followTransaction(const QString& operation, bool succeeded)
{
  if (operation == QLatin1String("trStart"))
    inTransaction = succeeded;
  else if (operation == QLatin1String("trCommit") || operation == QLatin1String("trRollback"))
    inTransaction = false;
}

Variant ConnectionBroker::Private::call(const QString& operation, VariantArray& arguments, const QString& requestId)
{
  prepare();
  const bool repeatable = !requestId.isEmpty() && !inTransaction;
  Frame answer;
  try {
    answer = exchange(operation, arguments, requestId);
  } catch (const RpcError& error) {
    if (!repeatable || error.code() != RpcError::ConnectionLost)
      throw;
    prepare();
    answer = exchange(operation, arguments, requestId);
  }
  followTransaction(operation, !answer.error);
  if (answer.error)
    throw RpcError(answer.error->code, answer.error->text, answer.error->incident);
  for (qsizetype i = 0; i < qMin(arguments.size(), answer.arguments.size()); ++i)
    if ((answer.returned >> i) & 1)
      arguments[i] = std::move(answer.arguments[i]);
  return answer.result;
}

ConnectionBroker::ConnectionBroker(SocketConnection* connection) : d(std::make_unique<Private>(connection)) {}

ConnectionBroker::~ConnectionBroker() = default;

void ConnectionBroker::Connect()
{
  d->atHome([this] {
    d->connectSocket();
    d->resume();
  });
}

void ConnectionBroker::Disconnect()
{
  d->atHome([this] {
    if (d->open())
      d->socket->disconnectFromHost();
    d->drop();
  });
}

bool ConnectionBroker::Connected() const
{
  bool connected = false;
  d->atHome([&] { connected = d->open(); });
  return connected;
}

void ConnectionBroker::setSession(const QString& sessionText)
{
  d->atHome([&] { d->session = sessionText; });
}

Variant ConnectionBroker::Call(const QString& operation, VariantArray& arguments, const QString& requestId)
{
  Variant result;
  d->atHome([&] { result = d->call(operation, arguments, requestId); });
  return result;
}

}  // namespace kalvor
