#include "server/operations/passwords.h"

#include <sodium.h>

#include <atomic>
#include <mutex>
#include <stdexcept>

namespace kalvor::server {

namespace {

std::atomic<PasswordCost> passwordCost = PasswordCost::Interactive;

std::mutex& hashingMutex()
{
  static std::mutex mutex;
  return mutex;
}

void prepareSodium()
{
  static const bool ready = sodium_init() >= 0;
  if (!ready) {
    throw std::runtime_error("libsodium cannot be used");
  }
}

// What an unknown user or an empty hash is compared with, so that they take as long as the others.
const QString& nobodysHash()
{
  static const QString hash = hashDigest(QStringLiteral("nobody"));
  return hash;
}

}  // namespace

void setPasswordCost(PasswordCost cost) { passwordCost = cost; }

QString hashDigest(const QString& digest)
{
  prepareSodium();
  const QByteArray bytes = digest.toUtf8();
  const bool cheap = passwordCost == PasswordCost::CheapForTests;
  char hash[crypto_pwhash_STRBYTES] = {};
  const std::lock_guard lock(hashingMutex());
  if (crypto_pwhash_str(hash, bytes.constData(), static_cast<unsigned long long>(bytes.size()),
                        cheap ? crypto_pwhash_OPSLIMIT_MIN : crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        cheap ? crypto_pwhash_MEMLIMIT_MIN : crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    throw std::runtime_error("not enough memory for a password hash");
  }
  return QString::fromLatin1(hash);
}

bool digestMatches(const QString& hash, const QString& digest)
{
  prepareSodium();
  const QByteArray known = (hash.isEmpty() ? nobodysHash() : hash).toLatin1();
  const QByteArray bytes = digest.toUtf8();
  const std::lock_guard lock(hashingMutex());
  const bool matches = known.size() < qsizetype(crypto_pwhash_STRBYTES) &&
                       crypto_pwhash_str_verify(known.constData(), bytes.constData(),
                                                static_cast<unsigned long long>(bytes.size())) == 0;
  return matches && !hash.isEmpty();
}

}  // namespace kalvor::server
