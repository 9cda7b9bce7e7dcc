// Values on their way into fields: texts of files and lookups read by data type, read-only fields filled, records found
// by the text of a field.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// How numbers and dates are written in a text; at first as the user writes them.
struct KALVOR_RULES TFormatSettings {
  TFormatSettings();

  QChar DecimalSeparator;
  QChar DateSeparator = u'.';
  QString ShortDateFormat = QStringLiteral("dd.MM.yyyy");  // only the order and width of d, m and y count
};

// Float and BCD: a text is read as a number. Dates and times: what is not empty is read as a date-time. Everything
// else, null and empty texts among it, comes back unchanged. DataError when a text does not read.
KALVOR_RULES Variant ParseAsFieldType(const Variant& value, DataType fieldType, const TFormatSettings& settings);

// Opens the dataset and goes to the first record whose field text equals the text exactly. False: there is none, the
// last record is current. DataError when the dataset has no such field.
KALVOR_RULES bool OurLocate(TClientDataSet* dataSet, const QString& fieldName, const QString& text);

// The place of a dataset among those of its form, from 0; 0 without a form.
KALVOR_RULES int dataSetIndex(const TClientDataSet* dataSet);

// Sets a field of the record being edited, read-only or not; a field without a column is left alone. DataError as
// SetValue.
KALVOR_RULES void setFieldAnyway(TField* field, const Variant& value);

}  // namespace kalvor
