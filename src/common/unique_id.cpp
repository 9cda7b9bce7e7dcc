#include "common/sql_text.h"
#include "platform/ports.h"

namespace kalvor {

QString CreateUniqueID()
{
  QByteArray bytes = randomSource().bytes(16);
  bytes[6] = char((bytes.at(6) & 0x0F) | 0x40);  // RFC 4122: random, version 4
  bytes[8] = char((bytes.at(8) & 0x3F) | 0x80);
  return QString::fromLatin1(bytes.toHex().toUpper());
}

}  // namespace kalvor
