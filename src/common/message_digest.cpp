#include "common/message_digest.h"

#include <QCryptographicHash>
#include <QFile>

#include "data/data_error.h"
#include "platform/text_encoding.h"

namespace kalvor {

QByteArray MD5String(const QString& text)
{
  return QCryptographicHash::hash(toWindows1251(text), QCryptographicHash::Md5);
}

QByteArray MD5File(const QString& fileName)
{
  QFile file(fileName);
  QCryptographicHash hash(QCryptographicHash::Md5);
  if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file) || file.error() != QFileDevice::NoError)
    throw DataError(QStringLiteral("Файлът %1 не може да бъде прочетен: %2").arg(fileName, file.errorString()));
  return hash.result();
}

QString MD5Print(const QByteArray& digest) { return QString::fromLatin1(digest.toHex()); }

}  // namespace kalvor
