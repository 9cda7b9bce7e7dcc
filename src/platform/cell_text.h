// Values of spreadsheet cells as texts that read back equal.
#pragma once

#include <QDateTime>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// How the reader of the texts expects numbers and dates. Of the picture only the order of d, m and y counts, and
// whether anything stands between them.
struct CellTextFormat {
  QChar decimalSeparator = u',';
  QChar dateSeparator = u'.';
  QString datePicture = QStringLiteral("dd.MM.yyyy");
};

// The shortest text that reads back as the same number, without an exponent below 10^21; empty when it is not finite.
KALVOR_PLATFORM QString cellNumberText(double value, const CellTextFormat& format);
// The year has four digits. A time of 0:00 is left out, and so is a day that is none.
KALVOR_PLATFORM QString cellDateText(QDate date, QTime time, const CellTextFormat& format);

// How the number of a cell is shown: a duration (elapsed hours) is no date.
enum class CellNumberKind : quint8 { Number, DateTime, Duration };
// By a spreadsheet's number format: "0.00", "dd/mm/yyyy hh:mm", "[h]:mm".
KALVOR_PLATFORM CellNumberKind cellNumberKind(const QString& numberFormat);
KALVOR_PLATFORM CellNumberKind cellNumberKind(int builtInFormat);

// The first day of a workbook's count; 1900 counts a 29 February that never was.
enum class CellEpoch : quint8 { Year1900, Year1904 };
// A serial that is no date stays a number.
KALVOR_PLATFORM QString cellSerialText(double value, CellNumberKind kind, CellEpoch epoch, const CellTextFormat& format);

}  // namespace kalvor
