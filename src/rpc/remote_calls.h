// What the client's rules need of the application server: calls by name and the packets of providers.
#pragma once

#include "data/data_broker.h"
#include "rpc/rpc_error.h"

namespace kalvor {

// The session's `ConBroker` is one of these: ConnectionBroker over a socket, or a scripted one in tests.
class KALVOR_RPC RemoteCalls : public DataBroker {
 public:
  ~RemoteCalls() override;

  virtual void Connect() = 0;  // RpcError when it fails
  virtual void Disconnect() = 0;
  virtual bool Connected() const = 0;

  // Calls an operation. The arguments are in/out: after the call they hold what the server left in them.
  // Throws RpcError. With a request id the server runs the call once and answers repetitions with the first
  // answer; the broker repeats it by itself after a lost connection.
  virtual Variant Call(const QString& operation, VariantArray& arguments, const QString& requestId = {}) = 0;
  Variant Call(const QString& operation, VariantArray&& arguments = {}) { return Call(operation, arguments); }

  // The session text that LogIn left, presented again after a reconnect; empty = none.
  virtual void setSession(const QString& sessionText) = 0;

  // Through the operations OpenProvider and FetchRecords.
  DataPacketPtr openProvider(const QString& provider, qsizetype count) override;
  DataPacketPtr fetchRecords(const QString& provider, const Variant& continuation, qsizetype count) override;
};

}  // namespace kalvor
