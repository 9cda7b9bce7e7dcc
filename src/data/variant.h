// The value that travels between forms, rules and the server.
#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include "layer_export.h"

namespace kalvor {

// One value. Null is an invalid QVariant. The kinds in use: bool, int, qlonglong, double, QString, QDate,
// QTime, QDateTime (local time, no zone), QByteArray (blob), QVariantList (array, zero-based), and the
// record sets of record_set.h. Any other kind is a programmer's mistake.
using Variant = QVariant;
using VariantArray = QVariantList;

// True for an invalid or a null value; the empty text is not null.
KALVOR_DATA bool isNull(const Variant& value);

// Text form without regard to the user's locale: numbers with ".", dates "yyyyMMdd", date-times
// "yyyyMMdd hh:mm:ss", times "hh:mm:ss", booleans "1" and "0"; null is the empty text.
KALVOR_DATA QString variantText(const Variant& value);

// One row of a filter: field, operator, value, conjunction to the next row, brackets around it.
struct FilterRow {
  QString field;        // usually table-qualified; may be a literal such as "1" that names no field
  QString op;           // "=", "<>", ">", "<", ">=", "<=", "LIKE", "is", "is not ", "IN", "IN "
  Variant value;        // text or a typed value; "null" for the "is" operators
  QString conjunction;  // "AND", "OR", or empty on the last row
  QString brackets;     // a run of "(" opened before and ")" closed after the row; usually empty

  bool operator==(const FilterRow&) const = default;
};

// A record filter; no rows is the absent (null) filter.
using FilterArray = QList<FilterRow>;

// To and from the array form on the wire: null, or an array of arrays of four or five items (the brackets
// item only when not empty). Reading refuses nothing: missing items are empty.
KALVOR_DATA Variant filterToVariant(const FilterArray& filter);
KALVOR_DATA FilterArray filterFromVariant(const Variant& value);

// [name, value] pairs sent with a dataset request.
struct NamedValue {
  QString name;
  Variant value;

  bool operator==(const NamedValue&) const = default;
};
using ParameterArray = QList<NamedValue>;

KALVOR_DATA Variant parametersToVariant(const ParameterArray& parameters);
KALVOR_DATA ParameterArray parametersFromVariant(const Variant& value);

}  // namespace kalvor
