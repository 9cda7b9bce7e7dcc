// The MD5 message digest (RFC 1321): of passwords, and for the checksums of transferred files. It protects against
// accidents, not against forgery.
#pragma once

#include <QByteArray>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// 16 bytes each. A text's bytes are those of the client's code page, Windows-1251. DataError when the file cannot be
// opened or read.
KALVOR_RULES QByteArray MD5String(const QString& text);
KALVOR_RULES QByteArray MD5File(const QString& fileName);
// 32 lower-case hexadecimal digits.
KALVOR_RULES QString MD5Print(const QByteArray& digest);

}  // namespace kalvor
