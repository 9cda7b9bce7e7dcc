// The types that columns are declared with, and how dates are written in the database. Known inside server/store only.
#pragma once

#include <QDateTime>
#include <optional>
#include <string_view>

#include "data/data_type.h"

namespace kalvor::server {

// None: an expression without a type.
enum class StoredType : quint8 { None, Integer, Boolean, Amount, Text, Date, Timestamp, Blob };
struct DeclaredType {
  StoredType type = StoredType::None;
  int size = 0;  // VARCHAR(n)
};
// Of a declaration such as "VARCHAR(20)"; an unknown word is None.
DeclaredType parseDeclaredType(QStringView text);
DataType dataTypeOf(StoredType type);

// yyyyMMdd and yyyyMMddThhmmss; invalid and midnight when they are not there.
QDate storedDate(std::string_view text);
QTime storedTime(std::string_view text);
QString storedText(const QDate& date);
QString storedText(const QDateTime& moment);
// What a column of a record set keeps for a date or a date-time, nothing when the text is none.
std::optional<qint64> storedDateNumber(std::string_view text, DataType type);

}  // namespace kalvor::server
