#include "session/password_digest.h"

#include "common/message_digest.h"

namespace kalvor {

QString passwordDigest(const QString& password) { return MD5Print(MD5String(password)); }

}  // namespace kalvor
