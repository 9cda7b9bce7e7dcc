// The servers that this workplace knows: by which certificate, and which of them are spoken to otherwise than by the
// address. Kept in two sections of the local settings file, a line a server, which nothing else writes:
//   [TrustedServers]    HOST:PORT=AB:CD:...   fingerprint of the certificate
//   [ServerEncryption]  HOST:PORT=tls         TLS on the loopback too; or "plaintext": none elsewhere either
#pragma once

#include <QHash>
#include <functional>
#include <mutex>

#include "rpc/server_trust.h"
#include "session/host_application.h"

namespace kalvor {

enum class Encryption : quint8 { ByAddress, Always, Never };

class KALVOR_RULES TrustedServers : public ServerTrust {
 public:
  // What the administrator handed to this run: the only certificate it takes. Empty: none.
  void setGivenFingerprint(const QByteArray& fingerprint) { given_ = fingerprint; }
  // Nobody is there to be asked; a server that is not known is refused.
  void setUnattended(bool unattended) { unattended_ = unattended; }

  // Clears the way for the question: the splash goes.
  void setBeforeQuestion(std::function<void()> action) { beforeQuestion_ = std::move(action); }

  bool encrypts(const QString& address, quint16 port) override;
  // A person is asked once about a server that is not known; only in the thread that made this object, in another one
  // it is refused. A certificate other than the known one is always refused.
  void check(const QString& address, quint16 port, const QByteArray& fingerprint) override;

 private:
  void ask(const QString& address, quint16 port, const QByteArray& fingerprint);
  void remember(const QString& key, const QByteArray& fingerprint);
  QByteArray known(const QString& key);

  QByteArray given_;
  bool unattended_ = false;
  std::function<void()> beforeQuestion_;
  Qt::HANDLE home_ = currentThread();
  std::mutex mutex_;
  QHash<QString, QByteArray> accepted_;  // in this run, should the file not be writable

  static Qt::HANDLE currentThread();
};

// Keeps how a server is spoken to from now on. ByAddress removes what was kept. False when the file cannot be written.
KALVOR_RULES bool keepEncryption(const ServerPlace& place, Encryption encryption);

}  // namespace kalvor
