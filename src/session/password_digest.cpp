#include "session/password_digest.h"

#include <QCryptographicHash>

#include "platform/text_encoding.h"

namespace kalvor {

QString passwordDigest(const QString& password)
{
  const QByteArray digest = QCryptographicHash::hash(toWindows1251(password), QCryptographicHash::Md5);
  return QString::fromLatin1(digest.toHex());
}

}  // namespace kalvor
