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

// What an unknown user's or an empty hash is compared with, so that they take as long as the others: the parameters of
// the two costs, and a salt and a hash that belong to no password.
constexpr const char* nobodysHash =
    "$argon2id$v=19$m=65536,t=2,p=1$bm9ib2R5J3MgdmFsdWVzIQ$bm9ib2R5J3MgaGFzaCwgd2hpY2ggbm9ib2R5IGhhcyE";
constexpr const char* nobodysCheapHash =
    "$argon2id$v=19$m=8,t=1,p=1$bm9ib2R5J3MgdmFsdWVzIQ$bm9ib2R5J3MgaGFzaCwgd2hpY2ggbm9ib2R5IGhhcyE";

std::atomic<quint64> hashCount = 0;

}  // namespace

void setPasswordCost(PasswordCost cost) { passwordCost = cost; }
quint64 hashesComputed() { return hashCount; }

QString hashDigest(const QString& digest)
{
  prepareSodium();
  const QByteArray bytes = digest.toUtf8();
  const bool cheap = passwordCost == PasswordCost::CheapForTests;
  char hash[crypto_pwhash_STRBYTES] = {};
  const std::lock_guard lock(hashingMutex());
  ++hashCount;
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
  const bool cheap = passwordCost == PasswordCost::CheapForTests;
  const QByteArray known = hash.isEmpty() ? QByteArray(cheap ? nobodysCheapHash : nobodysHash) : hash.toLatin1();
  const QByteArray bytes = digest.toUtf8();
  const std::lock_guard lock(hashingMutex());
  ++hashCount;
  const bool matches = known.size() < qsizetype(crypto_pwhash_STRBYTES) &&
                       crypto_pwhash_str_verify(known.constData(), bytes.constData(),
                                                static_cast<unsigned long long>(bytes.size())) == 0;
  return matches && !hash.isEmpty();
}

}  // namespace kalvor::server
