// Field types as the wire names them.
#pragma once

#include <iterator>

#include "data/data_type.h"

namespace kalvor::cbor {

struct FieldTypeName {
  DataType type;
  const char* name;
};
inline constexpr FieldTypeName fieldTypeNames[] = {
    {DataType::Unknown, "Unknown"},   {DataType::String, "String"},     {DataType::WideString, "WideString"},
    {DataType::SmallInt, "SmallInt"}, {DataType::Integer, "Integer"},   {DataType::Word, "Word"},
    {DataType::LargeInt, "LargeInt"}, {DataType::AutoInc, "AutoInc"},   {DataType::Boolean, "Boolean"},
    {DataType::Float, "Float"},       {DataType::Currency, "Currency"}, {DataType::Bcd, "Bcd"},
    {DataType::Date, "Date"},         {DataType::Time, "Time"},         {DataType::DateTime, "DateTime"},
    {DataType::TimeStamp, "TimeStamp"}, {DataType::Memo, "Memo"},       {DataType::WideMemo, "WideMemo"},
    {DataType::Blob, "Blob"}};
static_assert(std::size(fieldTypeNames) == size_t(DataType::Blob) + 1);

enum FieldFlag : quint8 { FlagRequired = 1, FlagReadOnly = 2, FlagUpdatable = 4, FlagsAll = 7 };

}  // namespace kalvor::cbor
