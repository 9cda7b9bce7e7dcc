// Values inside a call's arguments, where the shapes of the operation table do not look.
#pragma once

#include <QDate>

#include "data/variant.h"

namespace kalvor::server {

// All throw RpcError (BadArguments, Bulgarian) that calls the value by its name when it is of another kind. Texts of
// numbers and of dates (yyyymmdd) are taken for what they say. Null: the empty text, 0, an invalid date.
QString textArgument(const Variant& value, const QString& name);
qint64 amountArgument(const Variant& value, const QString& name);   // millionths
qint64 wholeArgument(const Variant& value, const QString& name);
bool flagArgument(const Variant& value, const QString& name);
QDate dateArgument(const Variant& value, const QString& name);

}  // namespace kalvor::server
