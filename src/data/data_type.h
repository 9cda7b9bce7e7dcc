// Data types of fields and how their values are kept.
#pragma once

#include <QtCore/qglobal.h>

namespace kalvor {

enum class DataType : quint8 {
  Unknown, String, WideString, SmallInt, Integer, Word, LargeInt, AutoInc, Boolean, Float, Currency, Bcd,
  Date, Time, DateTime, TimeStamp, Memo, WideMemo, Blob
};

// Integer: whole numbers and booleans as they are; Date as the Julian day number; Time as milliseconds of the
// day; DateTime and TimeStamp as milliseconds since 1970-01-01T00:00 of local time without a zone.
// Real: double. Text: UTF-16. Blob: bytes.
enum class StorageKind : quint8 { Integer, Real, Text, Blob };

constexpr StorageKind storageOf(DataType type)
{
  switch (type) {
    case DataType::Float:
    case DataType::Currency:
    case DataType::Bcd: return StorageKind::Real;
    case DataType::Unknown:
    case DataType::String:
    case DataType::WideString:
    case DataType::Memo:
    case DataType::WideMemo: return StorageKind::Text;
    case DataType::Blob: return StorageKind::Blob;
    default: return StorageKind::Integer;
  }
}

constexpr bool isTextType(DataType type) { return storageOf(type) == StorageKind::Text; }
constexpr bool isRealType(DataType type) { return storageOf(type) == StorageKind::Real; }
constexpr bool isIntegerType(DataType type) { return type >= DataType::SmallInt && type <= DataType::AutoInc; }
constexpr bool isNumericType(DataType type) { return isIntegerType(type) || isRealType(type); }
constexpr bool isDateType(DataType type) { return type >= DataType::Date && type <= DataType::TimeStamp; }

}  // namespace kalvor
