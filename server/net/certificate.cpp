#include "server/net/certificate.h"

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QSysInfo>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <unistd.h>

#include "server/log.h"
#include "server/store/database.h"

namespace kalvor::server {

namespace {

template <auto Free>
struct Freed {
  template <typename T>
  void operator()(T* object) const { Free(object); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using CertificatePtr = std::unique_ptr<X509, Freed<X509_free>>;
using BioPtr = std::unique_ptr<BIO, Freed<BIO_free_all>>;

constexpr int serialBytes = 16;
constexpr const char* endlessDate = "99991231235959Z";  // RFC 5280, 4.1.2.5: no well-defined end

[[noreturn]] void certificateError(const QString& text)
{
  throw std::runtime_error(text.toStdString());
}

template <typename Pointer>
Pointer checked(Pointer pointer)
{
  if (!pointer)
    certificateError(QStringLiteral("OpenSSL: %1").arg(QLatin1StringView(ERR_error_string(ERR_get_error(), nullptr))));
  return pointer;
}

void checkDone(bool done)
{
  if (!done)
    checked<void*>(nullptr);
}

QByteArray contentOf(BIO* memory)
{
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  return {data, qsizetype(size)};
}

BioPtr bioOf(const QByteArray& pem) { return BioPtr(checked(BIO_new_mem_buf(pem.constData(), int(pem.size())))); }

QByteArray readPem(const QString& path)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    certificateError(QStringLiteral("%1: %2").arg(path, file.errorString()));
  constexpr qint64 longest = 1024 * 1024;
  return file.read(longest);
}

// Nobody is asked for a password.
int noPassword(char*, int, int, void*) { return -1; }

KeyPtr parsedKey(const QByteArray& pem, const QString& path)
{
  KeyPtr key(PEM_read_bio_PrivateKey(bioOf(pem).get(), nullptr, noPassword, nullptr));
  if (!key)
    certificateError(QStringLiteral("%1 holds no private key in PEM form without a password").arg(path));
  return key;
}

CertificatePtr parsedCertificate(const QByteArray& pem, const QString& path)
{
  CertificatePtr certificate(PEM_read_bio_X509(bioOf(pem).get(), nullptr, noPassword, nullptr));
  if (!certificate)
    certificateError(QStringLiteral("%1 holds no certificate in PEM form").arg(path));
  return certificate;
}

QByteArray fingerprintOfCertificate(X509* certificate)
{
  unsigned char digest[EVP_MAX_MD_SIZE] = {};
  unsigned int size = 0;
  checkDone(X509_digest(certificate, EVP_sha256(), digest, &size) == 1);
  return {reinterpret_cast<const char*>(digest), qsizetype(size)};
}

QByteArray newKeyPem()
{
  const KeyPtr key(checked(EVP_EC_gen("P-256")));
  const BioPtr memory(checked(BIO_new(BIO_s_mem())));
  checkDone(PEM_write_bio_PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1);
  return contentOf(memory.get());
}

void setSerial(X509* certificate)
{
  unsigned char bytes[serialBytes] = {};
  checkDone(RAND_bytes(bytes, serialBytes) == 1);
  bytes[0] = (bytes[0] & 0x7f) | 0x40;  // positive, and of one length
  BIGNUM* number = checked(BN_bin2bn(bytes, serialBytes, nullptr));
  BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate));
  BN_free(number);
}

QByteArray newCertificatePem(EVP_PKEY* key)
{
  const CertificatePtr certificate(checked(X509_new()));
  checkDone(X509_set_version(certificate.get(), X509_VERSION_3) == 1);
  setSerial(certificate.get());
  // A day back, for clients whose clock is behind.
  checkDone(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -24 * 3600) != nullptr);
  checkDone(ASN1_TIME_set_string(X509_getm_notAfter(certificate.get()), endlessDate) == 1);
  X509_NAME* name = X509_get_subject_name(certificate.get());
  const QByteArray host = QSysInfo::machineHostName().toUtf8().left(60);
  const QByteArray common = host.isEmpty() ? QByteArray("kalvor-server") : host;
  for (const auto& [field, value] : {std::pair("O", QByteArray("kalvor-server")), std::pair("CN", common)})
    checkDone(X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8, reinterpret_cast<const unsigned char*>(value.constData()),
                                         int(value.size()), -1, 0) == 1);
  checkDone(X509_set_issuer_name(certificate.get(), name) == 1);
  checkDone(X509_set_pubkey(certificate.get(), key) == 1);
  checkDone(X509_sign(certificate.get(), key, EVP_sha256()) > 0);
  const BioPtr memory(checked(BIO_new(BIO_s_mem())));
  checkDone(PEM_write_bio_X509(memory.get(), certificate.get()) == 1);
  return contentOf(memory.get());
}

// Puts a whole file into its place unless one is there: of several that do so together one wins. True for the winner.
bool placeNewFile(const QString& path, const QByteArray& content, QFile::Permissions permissions)
{
  const QString draft = QStringLiteral("%1.%2").arg(path).arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char('0'));
  QFile file(draft);
  const bool written = file.open(QIODevice::WriteOnly | QIODevice::NewOnly, permissions) && file.write(content) == content.size() &&
                 file.flush() && fsync(file.handle()) == 0;
  const QString why = file.errorString();
  file.close();
  bool placed = written && link(QFile::encodeName(draft).constData(), QFile::encodeName(path).constData()) == 0;
  const int error = errno;
  // File systems without links.
  placed = placed || (written && error == EPERM && QFile::rename(draft, path));
  QFile::remove(draft);
  if (!placed && (!written || error != EEXIST))
    certificateError(QStringLiteral("%1: %2").arg(path, written ? QString::fromLocal8Bit(std::strerror(error)) : why));
  return placed;
}

}  // namespace

CertificateFiles certificateFilesIn(const QString& folder)
{
  const QDir place(folder);
  return {place.filePath(QStringLiteral("kalvor-server.crt")), place.filePath(QStringLiteral("kalvor-server.key"))};
}

QString certificateFolderOf(const QString& database)
{
  return isPostgresUri(database)
             ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/kalvor")
             : QFileInfo(database).absolutePath();
}

ServerCertificate readCertificate(const CertificateFiles& files)
{
  ServerCertificate read{readPem(files.certificate), readPem(files.key), {}};
  const CertificatePtr certificate = parsedCertificate(read.certificate, files.certificate);
  const KeyPtr key = parsedKey(read.key, files.key);
  if (X509_check_private_key(certificate.get(), key.get()) != 1)
    certificateError(QStringLiteral("%1 is not the key of %2").arg(files.key, files.certificate));
  if (QFileInfo(files.key).permissions() & QFile::ReadOther)
    logEvent(LogLevel::Warning, "key_is_open", {{"file", files.key}, {"warning", QStringLiteral("others may read it")}});
  read.fingerprint = fingerprintOfCertificate(certificate.get());
  return read;
}

ServerCertificate readOrMakeCertificate(const CertificateFiles& files)
{
  const bool hasCertificate = QFile::exists(files.certificate);
  if (hasCertificate && !QFile::exists(files.key))
    certificateError(QStringLiteral("the key %1 of the certificate %2 is missing. Put it back; or remove the certificate "
                                    "too, then a new one is made, which every client has to be told of")
                         .arg(files.key, files.certificate));
  if (!hasCertificate) {
    QDir().mkpath(QFileInfo(files.key).absolutePath());
    // The key first: a certificate is there only when its key is.
    if (!QFile::exists(files.key))
      placeNewFile(files.key, newKeyPem(), QFile::ReadOwner | QFile::WriteOwner);
    const KeyPtr key = parsedKey(readPem(files.key), files.key);
    if (placeNewFile(files.certificate, newCertificatePem(key.get()),
                     QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther))
      logEvent(LogLevel::Info, "certificate_made", {{"file", files.certificate}});
  }
  return readCertificate(files);
}

}  // namespace kalvor::server
