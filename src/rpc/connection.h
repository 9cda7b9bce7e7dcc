// The client's end of the wire: one socket to the application server, calls by name over it.
#pragma once

#include <memory>

#include "data/data_broker.h"
#include "data/data_error.h"

namespace kalvor {

// What a failed call carries: codes below. The text is Bulgarian and fit for the user; incident is the id
// under which the server logged the details, empty when there is none.
class KALVOR_RPC RpcError : public DataError {
 public:
  enum Code : int {
    Unreachable = 1,     // no connection, and none could be made
    Timeout = 2,         // no answer in time; the call may have run
    ConnectionLost = 3,  // the connection broke before the answer came; the call may have run
    BadFrame = 4,        // the other side does not speak the protocol
    UnknownOperation = 10,
    BadArguments = 11,
    NotLoggedIn = 12,
    Forbidden = 13,
    Refused = 14,        // a statement, table, field or value the server does not accept
    Conflict = 20,       // a record changed since it was read; the text names who and when
    Invalid = 21,        // a value that the server's rules refuse (too long, missing, no such record)
    Internal = 30
  };
  RpcError(int code, QString text, QString incident = {});
  int code() const { return code_; }
  const QString& incident() const { return incident_; }

 private:
  int code_;
  QString incident_;
};

// `SocketCon`: where the server is. Setting address or port of an open connection takes effect at the next
// connect. Synchronous; use from one thread (calls from other threads are handed over to it and wait).
class KALVOR_RPC SocketConnection {
 public:
  SocketConnection();
  ~SocketConnection();
  QString Address = QStringLiteral("127.0.0.1");
  quint16 Port = 2030;
  QString ServerName = QStringLiteral("KalvorServer.rdmKalvor");
  int connectTimeoutMs = 5000;
  int answerTimeoutMs = 60000;

 private:
  friend class ConnectionBroker;
  struct Private;
  std::unique_ptr<Private> d;
};

// `ConBroker`: every remote call and every provider goes through it. When the connection breaks between two
// calls it is made again once and the session resumed; a call that may have run is not repeated unless it
// was given a request id.
class KALVOR_RPC ConnectionBroker : public DataBroker {
 public:
  explicit ConnectionBroker(SocketConnection* connection);
  ~ConnectionBroker() override;

  void Connect();               // RpcError when it fails
  void Disconnect();
  bool Connected() const;

  // Calls an operation. The arguments are in/out: after the call they hold what the server left in them.
  // Throws RpcError. With a request id the server runs the call once and answers repetitions with the first
  // answer; the broker repeats it by itself after a lost connection.
  Variant Call(const QString& operation, VariantArray& arguments, const QString& requestId = {});
  Variant Call(const QString& operation, VariantArray&& arguments = {}) { return Call(operation, arguments); }

  // The session text that LogIn left, presented again after a reconnect; empty = none.
  void setSession(const QString& sessionText);

  DataPacketPtr openProvider(const QString& provider, qsizetype count) override;
  DataPacketPtr fetchRecords(const QString& provider, const Variant& continuation, qsizetype count) override;

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor
