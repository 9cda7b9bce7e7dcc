// The application server in this process: sockets, calls and databases in threads of its own.
#pragma once

#include <QString>
#include <memory>

#include "layer_export.h"
#include "server/net/connection_limits.h"

namespace kalvor::server {

class ServerCore;

struct ServerOptions {
  QString database;                               // a file, a libpq URI, or ":memory:" for this server alone
  QString address = QStringLiteral("127.0.0.1");
  quint16 port = 2030;                            // 0: any free one
  bool plaintext = false;                         // allows an address that is not the loopback
  int workers = 3;                                // threads that answer reading calls
  ConnectionLimits limits;
};

class KALVOR_SERVER ApplicationServer {
 public:
  // Opens the database and brings it to this program's version. Throws StoreError.
  explicit ApplicationServer(ServerOptions options);
  ~ApplicationServer();
  ApplicationServer(const ApplicationServer&) = delete;
  ApplicationServer& operator=(const ApplicationServer&) = delete;

  // Listens when it returns. Throws std::runtime_error when it cannot: the port is taken, or the address is not the
  // loopback and plaintext is not allowed.
  void start();
  quint16 port() const;  // 0 while stopped
  // Finishes the calls under way and closes every connection. Nothing happens when it is stopped.
  void stop();

  ServerCore& core();    // for filling the database before start()

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor::server
