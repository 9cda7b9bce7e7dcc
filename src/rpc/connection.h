// The client's end of the wire: one socket to the application server, calls by name over it.
#pragma once

#include <memory>

#include "rpc/remote_calls.h"
#include "rpc/server_trust.h"

namespace kalvor {

// `SocketCon`: where the server is. Setting address or port of an open connection takes effect at the next
// connect.
class KALVOR_RPC SocketConnection {
 public:
  SocketConnection() = default;
  SocketConnection(const SocketConnection&) = delete;
  SocketConnection& operator=(const SocketConnection&) = delete;
  QString Address = QStringLiteral("127.0.0.1");
  quint16 Port = 2030;
  QString ServerName = QStringLiteral("KalvorServer.rdmKalvor");
  int connectTimeoutMs = 5000;  // for the connection, and as much again for the handshake of TLS
  int answerTimeoutMs = 60000;  // without a byte of it
  // Not owned. Null: encrypted beyond the loopback, and no certificate is trusted.
  ServerTrust* trust = nullptr;
};

// `ConBroker`: every remote call and every provider goes through it. Synchronous, and at home in the thread
// that made it: calls from other threads are handed over to that thread's event loop and wait. When the
// connection breaks between two calls it is made again once and the session resumed; a call that may have run
// is not repeated unless it was given a request id, and nothing is repeated between trStart and the end of
// that transaction, which is lost with its connection.
class KALVOR_RPC ConnectionBroker : public RemoteCalls {
 public:
  explicit ConnectionBroker(SocketConnection* connection);  // not owned
  ~ConnectionBroker() override;

  void Connect() override;
  void Disconnect() override;
  bool Connected() const override;
  using RemoteCalls::Call;
  Variant Call(const QString& operation, VariantArray& arguments, const QString& requestId = {}) override;
  void setSession(const QString& sessionText) override;

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor
