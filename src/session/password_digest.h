// What the client sends instead of a password.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// MD5 (RFC 1321) of the password's bytes in Windows-1251, as 32 lower-case hexadecimal digits.
KALVOR_RULES QString passwordDigest(const QString& password);

}  // namespace kalvor
