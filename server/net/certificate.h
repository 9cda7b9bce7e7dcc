// The certificate by which clients know this server, and its key.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "layer_export.h"

namespace kalvor::server {

struct CertificateFiles {
  QString certificate;  // PEM; the server's own first, what signed it after it
  QString key;          // PEM, without a password

  bool operator==(const CertificateFiles&) const = default;
};

struct ServerCertificate {
  QByteArray certificate;  // PEM
  QByteArray key;          // PEM
  QByteArray fingerprint;  // SHA-256 of the first certificate, 32 bytes
};

// The two files of a folder: kalvor-server.crt, kalvor-server.key.
KALVOR_SERVER CertificateFiles certificateFilesIn(const QString& folder);
// Where a server keeps them: beside the file of its database, else in the user's data folder.
KALVOR_SERVER QString certificateFolderOf(const QString& database);

// Reads both files. Throws std::runtime_error, in words for the administrator: a file that cannot be read, a key that
// has a password or does not belong to the certificate.
KALVOR_SERVER ServerCertificate readCertificate(const CertificateFiles& files);

// The same; makes the files when neither is there: a key on the curve P-256 that only its owner may read, and a
// certificate of it that does not end. Servers that start together agree on one. A certificate without its key is an
// error: a new pair would be another server to every client.
KALVOR_SERVER ServerCertificate readOrMakeCertificate(const CertificateFiles& files);

}  // namespace kalvor::server
