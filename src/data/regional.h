// Numbers and dates as Bulgarians write and read them.
#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

#include "layer_export.h"

namespace kalvor {

struct RegionalFormat {
  QChar decimalSeparator = u',';
  QChar thousandSeparator = u'\u00A0';  // when reading, blank and no-break blank both count
};
KALVOR_DATA RegionalFormat& regionalFormat();

// Shortest text that reads back equal, with the user's separator and no thousands: 1234,5.
KALVOR_DATA QString numberText(double value);
// By picture: 0 a digit that always shows, # one that shows when needed, "," thousands, "." the decimal
// point, ";" the negative and the zero picture. Half rounds away from zero on the decimal value.
KALVOR_DATA QString formatNumber(double value, const QString& picture);
// Nothing when the text is not a number in the user's form. Thousands may be grouped; "." is not read as a
// decimal separator when that is "," .
KALVOR_DATA std::optional<double> parseNumber(const QString& text);
KALVOR_DATA std::optional<qint64> parseInteger(const QString& text);

KALVOR_DATA QString dateText(QDate date);                // dd.MM.yyyy
KALVOR_DATA QString dateTimeText(const QDateTime& when); // dd.MM.yyyy hh:mm:ss, without a zero time
// Picture letters d M m y h n s in any case as in "dd.mm.yyyy hh:nn:ss"; m after h or before s is a minute.
KALVOR_DATA QString formatDateTime(const QDateTime& when, const QString& picture);
// dd.MM.yyyy, d.M.yy, also with "/" and "-", yyyyMMdd and yyyy-MM-dd; two-digit years are 2000-2099.
KALVOR_DATA std::optional<QDate> parseDate(const QString& text);
KALVOR_DATA std::optional<QDateTime> parseDateTime(const QString& text);

}  // namespace kalvor
