// The application server in this process: sockets, calls and databases in threads of its own.
#pragma once

#include <QString>
#include <memory>

#include "layer_export.h"
#include "server/net/certificate.h"
#include "server/session/session.h"

namespace kalvor::server {

class ServerCore;

struct ServerOptions {
  QString database;                               // a file, a libpq URI, or ":memory:" for this server alone
  QString address = QStringLiteral("127.0.0.1");
  quint16 port = 2030;                            // 0: any free one
  bool plaintext = false;                         // no TLS on an address that is not the loopback either
  bool tls = false;                               // TLS on the loopback too
  QString tlsFolder;                              // of the certificate that the server makes; empty: its usual one
  CertificateFiles certificate;                   // the site's own; both names empty: there is none
  SessionLimits sessions;
  int workers = 3;                                // threads that answer reading calls
  int metricsPort = -1;                           // health and figures on the loopback; -1: none, 0: any free port
};

// The files of the certificate that a server with these options shows. Throws std::runtime_error when only one of the
// site's own is named.
KALVOR_SERVER CertificateFiles certificateFilesOf(const ServerOptions& options);
// Reads them, or makes those that are not the site's own.
KALVOR_SERVER ServerCertificate certificateOf(const ServerOptions& options);

class KALVOR_SERVER ApplicationServer {
 public:
  // Opens the database and brings it to this program's version. Throws StoreError.
  explicit ApplicationServer(ServerOptions options);
  ~ApplicationServer();
  ApplicationServer(const ApplicationServer&) = delete;
  ApplicationServer& operator=(const ApplicationServer&) = delete;

  // Listens when it returns; with TLS unless the address is the loopback or plaintext was asked for. Throws
  // std::runtime_error when it cannot: the port is taken, the certificate cannot be used, tls and plaintext at once.
  void start();
  QByteArray fingerprint() const;  // of the certificate, 32 bytes; empty without TLS
  quint16 port() const;  // 0 while stopped
  quint16 metricsPort() const;  // 0 without one
  // Finishes the calls under way and closes every connection. Nothing happens when it is stopped.
  void stop();

  ServerCore& core();    // for filling the database before start()

 private:
  struct Private;
  std::unique_ptr<Private> d;
};

}  // namespace kalvor::server
