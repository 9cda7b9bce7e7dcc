// One value into the type of a field, and the whole numbers that dates and times are kept as.
#pragma once

#include <QDateTime>
#include <optional>

#include "data/data_type.h"
#include "data/variant.h"

namespace kalvor {

enum class TextForm : quint8 {
  User,      // "1 234,5", "31.12.2024": what people type
  Invariant  // "1234.5", "20241231" first, then as people type
};

// The value as the type keeps it: QString, qlonglong, bool, double, QDate, QTime, QDateTime, QByteArray; null
// stays null, and a date that is none is null. Nothing when the value does not convert, or a number is out of the
// type's range. A real number that goes to an integer type is rounded, half away from zero; a text is not.
std::optional<Variant> convertedValue(DataType type, const Variant& value, TextForm form);

// Text of a value as users read and type it; null is the empty text.
QString userText(DataType type, const Variant& value);

// A date-time without a zone, so without hours that a zone leaves out.
struct DayAndTime {
  QDate date;
  QTime time;
};

qint64 storedDate(QDate date);
qint64 storedTime(QTime time);
qint64 storedDateTime(DayAndTime when);
QDate dateFromStored(qint64 value);
QTime timeFromStored(qint64 value);
DayAndTime dayAndTime(qint64 stored);
QDateTime dateTimeFromStored(qint64 value);
// The stored number of a converted value of an integer-kept type.
qint64 storedInteger(DataType type, const Variant& value);
Variant valueFromStored(DataType type, qint64 value);

}  // namespace kalvor
