#include "platform/ftp.h"

#include <curl/curl.h>

#include <QFile>
#include <QUrl>
#include <algorithm>
#include <exception>

namespace kalvor {
namespace {

constexpr long connectTimeoutSeconds = 30;
constexpr long silenceTimeoutSeconds = 60;

constexpr CURLcode socketFailures[] = {
    CURLE_COULDNT_RESOLVE_PROXY, CURLE_COULDNT_RESOLVE_HOST, CURLE_COULDNT_CONNECT, CURLE_FTP_CANT_GET_HOST,
    CURLE_FTP_ACCEPT_FAILED, CURLE_FTP_ACCEPT_TIMEOUT, CURLE_PARTIAL_FILE, CURLE_OPERATION_TIMEDOUT,
    CURLE_INTERFACE_FAILED, CURLE_GOT_NOTHING, CURLE_SEND_ERROR, CURLE_RECV_ERROR, CURLE_AGAIN,
    CURLE_NO_CONNECTION_AVAILABLE,
};
constexpr CURLcode replyFailures[] = {
    CURLE_WEIRD_SERVER_REPLY, CURLE_REMOTE_ACCESS_DENIED, CURLE_FTP_WEIRD_PASS_REPLY, CURLE_FTP_WEIRD_PASV_REPLY,
    CURLE_FTP_WEIRD_227_FORMAT, CURLE_FTP_COULDNT_SET_TYPE, CURLE_FTP_COULDNT_RETR_FILE, CURLE_QUOTE_ERROR,
    CURLE_UPLOAD_FAILED, CURLE_FTP_PORT_FAILED, CURLE_FTP_COULDNT_USE_REST, CURLE_LOGIN_DENIED,
    CURLE_REMOTE_DISK_FULL, CURLE_REMOTE_FILE_EXISTS, CURLE_FTP_PRET_FAILED,
};

template <size_t count>
bool isOneOf(CURLcode code, const CURLcode (&codes)[count])
{
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

FtpFailure failureOf(CURLcode code)
{
  if (isOneOf(code, socketFailures))
    return FtpFailure::Socket;
  if (code == CURLE_BAD_DOWNLOAD_RESUME)
    return FtpFailure::PastTheEnd;
  return isOneOf(code, replyFailures) ? FtpFailure::Reply : FtpFailure::Other;
}

void startLibraryOnce()
{
  static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (started != CURLE_OK)
    throw FtpError(FtpFailure::Other,
                   QStringLiteral("FTP не е наличен: %1").arg(QLatin1String(curl_easy_strerror(started))));
}

// A line break would let what follows it be a command of its own.
void refuseControlCharacters(const QString& text, const QString& what)
{
  for (const QChar c : text)
    if (c.unicode() < 0x20 || c.unicode() == 0x7F)
      throw FtpError(FtpFailure::Other, QStringLiteral("Недопустим знак в %1.").arg(what));
}

QByteArray remoteNameBytes(const QString& name)
{
  refuseControlCharacters(name, QStringLiteral("името на файла на FTP сървъра"));
  return name.toUtf8();
}

class CommandList {
 public:
  explicit CommandList(const QList<QByteArray>& commands)
  {
    for (const QByteArray& command : commands)
      list_ = curl_slist_append(list_, command.constData());
  }
  ~CommandList() { curl_slist_free_all(list_); }
  CommandList(const CommandList&) = delete;
  CommandList& operator=(const CommandList&) = delete;
  curl_slist* get() const { return list_; }

 private:
  curl_slist* list_ = nullptr;
};

// What a transfer hands on; an exception must not pass through the C library.
struct Receiver {
  const std::function<bool(QByteArrayView)>& receive;
  std::exception_ptr error;
};

size_t receivePart(char* bytes, size_t one, size_t count, void* receiver)
{
  auto& target = *static_cast<Receiver*>(receiver);
  try {
    return target.receive(QByteArrayView(bytes, qsizetype(one * count))) ? one * count : 0;
  } catch (...) {
    target.error = std::current_exception();
    return 0;
  }
}

size_t readPart(char* buffer, size_t one, size_t count, void* file)
{
  const qint64 got = static_cast<QFile*>(file)->read(buffer, qint64(one * count));
  return got < 0 ? size_t(CURL_READFUNC_ABORT) : size_t(got);
}

size_t dropPart(char*, size_t one, size_t count, void*) { return one * count; }

}  // namespace

FtpError::FtpError(FtpFailure failure, const QString& message) : DataError(message), failure_(failure) {}
FtpError::~FtpError() = default;

struct FtpSession::Private {
  explicit Private(const FtpServer& place) : server(place) {}
  ~Private() { curl_easy_cleanup(curl); }

  // Everything but the transfer itself; the handle keeps the connection between two transfers.
  void prepare(const QString& remoteName);
  void perform();
  void command(const QList<QByteArray>& commands);

  FtpServer server;
  CURL* curl = nullptr;
  char errorBuffer[CURL_ERROR_SIZE] = {};
};

void FtpSession::Private::prepare(const QString& remoteName)
{
  refuseControlCharacters(server.user + server.password, QStringLiteral("името или паролата за FTP сървъра"));
  const QByteArray name = remoteNameBytes(remoteName).toPercentEncoding();
  QUrl root;
  root.setScheme(QStringLiteral("ftp"));
  root.setHost(server.host, QUrl::StrictMode);
  root.setPort(server.port);
  root.setPath(QStringLiteral("/"));
  if (!root.isValid() || root.host().isEmpty())
    throw FtpError(FtpFailure::Other, QStringLiteral("Невалиден адрес на FTP сървър: \"%1\"").arg(server.host));
  startLibraryOnce();
  if (!curl && !(curl = curl_easy_init()))
    throw FtpError(FtpFailure::Other, QStringLiteral("FTP не е наличен."));
  curl_easy_reset(curl);
  errorBuffer[0] = 0;
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "ftp");
  curl_easy_setopt(curl, CURLOPT_PROXY, "");  // whatever the environment says
  curl_easy_setopt(curl, CURLOPT_URL, (root.toEncoded() + name).constData());
  if (!server.user.isEmpty()) {
    curl_easy_setopt(curl, CURLOPT_USERNAME, server.user.toUtf8().constData());
    curl_easy_setopt(curl, CURLOPT_PASSWORD, server.password.toUtf8().constData());
  }
  curl_easy_setopt(curl, CURLOPT_NETRC, long(CURL_NETRC_IGNORED));
  curl_easy_setopt(curl, CURLOPT_FTP_FILEMETHOD, long(CURLFTPMETHOD_NOCWD));
  curl_easy_setopt(curl, CURLOPT_FTP_SKIP_PASV_IP, 1L);
  curl_easy_setopt(curl, CURLOPT_TRANSFERTEXT, 0L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, connectTimeoutSeconds);
  curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, silenceTimeoutSeconds);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, silenceTimeoutSeconds);
  curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorBuffer);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &dropPart);
}

void FtpSession::Private::perform()
{
  const CURLcode code = curl_easy_perform(curl);
  if (code == CURLE_OK)
    return;
  const QString reason = QString::fromUtf8(errorBuffer[0] ? errorBuffer : curl_easy_strerror(code));
  throw FtpError(failureOf(code), QStringLiteral("FTP сървър %1: %2").arg(server.host, reason));
}

void FtpSession::Private::command(const QList<QByteArray>& commands)
{
  prepare(QString());
  const CommandList list(commands);
  curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
  curl_easy_setopt(curl, CURLOPT_QUOTE, list.get());
  perform();
}

FtpSession::FtpSession(const FtpServer& server) : d(std::make_unique<Private>(server)) {}
FtpSession::~FtpSession() = default;

void FtpSession::connect() { d->command({}); }

void FtpSession::store(const QString& localFile, const QString& remoteName)
{
  QFile file(localFile);
  if (!file.open(QIODevice::ReadOnly) || file.isSequential())
    throw FtpError(FtpFailure::Other,
                   QStringLiteral("Файлът %1 не може да бъде отворен: %2").arg(localFile, file.errorString()));
  d->prepare(remoteName);
  curl_easy_setopt(d->curl, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(d->curl, CURLOPT_INFILESIZE_LARGE, curl_off_t(file.size()));
  curl_easy_setopt(d->curl, CURLOPT_READFUNCTION, &readPart);
  curl_easy_setopt(d->curl, CURLOPT_READDATA, static_cast<void*>(&file));
  d->perform();
}

void FtpSession::fetch(const QString& remoteName, qint64 offset, const std::function<bool(QByteArrayView)>& receive)
{
  Receiver receiver{receive, nullptr};
  d->prepare(remoteName);
  curl_easy_setopt(d->curl, CURLOPT_RESUME_FROM_LARGE, curl_off_t(offset));
  curl_easy_setopt(d->curl, CURLOPT_WRITEFUNCTION, &receivePart);
  curl_easy_setopt(d->curl, CURLOPT_WRITEDATA, static_cast<void*>(&receiver));
  try {
    d->perform();
  } catch (const FtpError&) {
    if (receiver.error)
      std::rethrow_exception(receiver.error);
    throw;
  }
}

void FtpSession::rename(const QString& from, const QString& to)
{
  d->command({"RNFR " + remoteNameBytes(from), "RNTO " + remoteNameBytes(to)});
}

void FtpSession::remove(const QString& remoteName) { d->command({"DELE " + remoteNameBytes(remoteName)}); }

}  // namespace kalvor
