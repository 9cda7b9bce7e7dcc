// Single files over FTP (RFC 959): passive mode, binary. The address in a server's passive answer is not followed.
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "data/data_error.h"
#include "layer_export.h"

namespace kalvor {

struct FtpServer {
  QString host;
  quint16 port = 21;
  QString user;      // empty = anonymous
  QString password;
};

// Socket: no connection, or it broke. Reply: the server refused. PastTheEnd: a fetch from behind the end of the remote
// file. The message never holds user or password.
enum class FtpFailure : quint8 { Socket, Reply, PastTheEnd, Other };

class KALVOR_PLATFORM FtpError : public DataError {
 public:
  FtpError(FtpFailure failure, const QString& message);
  ~FtpError() override;
  FtpFailure failure() const { return failure_; }

 private:
  FtpFailure failure_;
};

// One connection; closed with the object. Every operation raises FtpError. Remote names are relative to the folder
// after the log-in unless they begin with "/"; line breaks and other control characters in a name, the user or the
// password are refused before anything is sent.
class KALVOR_PLATFORM FtpSession {
 public:
  explicit FtpSession(const FtpServer& server);
  ~FtpSession();
  FtpSession(const FtpSession&) = delete;
  FtpSession& operator=(const FtpSession&) = delete;

  void connect();  // and logs in
  void store(const QString& localFile, const QString& remoteName);
  // Gives the bytes from the offset on, piece by piece; a false answer ends the transfer with FtpFailure::Other.
  void fetch(const QString& remoteName, qint64 offset, const std::function<bool(QByteArrayView)>& receive);
  void rename(const QString& from, const QString& to);
  void remove(const QString& remoteName);

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor
