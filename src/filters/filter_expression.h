// The filter language: what a user types for one field, the filter it means, and its two stored forms.
#pragma once

#include <QDate>
#include <functional>
#include <optional>

#include "data/field.h"
#include "data/variant.h"

namespace kalvor {

enum TSimbol { sbEqual, sbLsEqual, sbGrEqual, sbLess, sbGreater, sbPoints, sbDifferent, sbNotSimbol };

// One value of a list: its converted text (null: left unset) and the conjunction after it.
struct CriterionValue {
  Variant text;
  QString conjunction;  // "OR", "AND", empty on the last
};
using ValueFunction = std::function<QString(const QString&)>;

// All raise TELException with the routine's context when something unexpected happens.
// BuildFilter: false when the criterion does not convert (the user was told); Filter is then untouched. The rows
// name the field by its origin (its name in filters), or by its own name where it has none; without a field,
// fieldName is taken and the rules of texts. Types that have no rule of their own are read as the nearest one has it:
// all whole numbers, currency, time stamps; the rest as text.
KALVOR_RULES bool BuildFilter(const TField* field, const QString& criterionText, const QString& fieldName,
                              FilterArray& filter);
KALVOR_RULES void PreparateFilterString(const QString& text, QString& leftText, QString& rightText, QString& op);
KALVOR_RULES bool ConvertFldValues(DataType type, const QString& leftText, const QString& rightText,
                                   QList<CriterionValue>& values, Variant& firstValue);
KALVOR_RULES TSimbol SetSimbol(const QString& text);
KALVOR_RULES QString GenerateDate(const QString& text, bool convert);
KALVOR_RULES int GenerateIntervalData(const QString& text, QString& dateText);

// The same as a date; DataError "Error converting interval %s to DateTime" when the text is none.
KALVOR_RULES QDate ConvertIntervalToDate(const QString& text);

// The stored filter string: "Name,LIKE,ab%,&Code,=,5,".
KALVOR_RULES QString BuildStrFilter(const FilterArray& filter);
KALVOR_RULES FilterArray BuildFilterFromStr(const QString& text, const ValueFunction& valueFunction = {});
// The slash filter string: rows split by two backslashes, items by "/".
KALVOR_RULES FilterArray GetFilterFromStr(const QString& text);
KALVOR_RULES void BuildFilterFromString(const QString& text, const QString& separator, FilterArray& filter);
// Second's rows, then First's, each group of several rows in brackets.
KALVOR_RULES FilterArray GetAllFilter(const FilterArray& first, const FilterArray& second);

}  // namespace kalvor
