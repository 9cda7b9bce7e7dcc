// Whether a server may be talked to: encrypted or not, and by whose certificate.
#pragma once

#include <QByteArray>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// What a workplace knows of its servers. The broker asks on every connect, in the thread of the broker.
class KALVOR_RPC ServerTrust {
 public:
  virtual ~ServerTrust();
  // Whether the connection is made with TLS. Here: unless the address is the loopback.
  virtual bool encrypts(const QString& address, quint16 port);
  // After the handshake, before anything is sent: returns when the server may be talked to, throws RpcError (Untrusted)
  // when not. fingerprint: SHA-256 of the certificate, 32 bytes.
  virtual void check(const QString& address, quint16 port, const QByteArray& fingerprint) = 0;
};

// "localhost", 127.x.x.x, ::1.
KALVOR_RPC bool isLoopbackAddress(const QString& address);

// A fingerprint as it is shown: "AB:CD:..." in capitals; and read back from what a person typed, with or without
// separators. Empty when it is none.
KALVOR_RPC QString fingerprintText(const QByteArray& fingerprint);
KALVOR_RPC QByteArray fingerprintOf(const QString& text);

}  // namespace kalvor
