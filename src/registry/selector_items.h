// Selector descriptions: which lookup form a field opens, under which condition, and what is copied from it.
#pragma once

#include "data/variant.h"
#include "registry/form_types.h"

namespace kalvor {

// One item of a description. The lists of fields are comma-separated and run side by side.
struct TSelectorItem {
  FilterArray Condition;   // no rows: always
  qint32 FormId = -1;      // -1: the description holds no number
  QString SourceFields;    // of the lookup form's records
  QString TargetFields;    // of the edited dataset
  QString Filter;          // stored filter string with macros: stays under every filter the user sets
  QString PublicFilter;    // the same, as the filter that the user may replace
  ShowOption Options = so_SelectSingle;
};
using TSelectorItems = QList<TSelectorItem>;

// Items separated by "$", parts by ";": condition; form; source fields; target fields; filter; public filter; options.
// A part ends at a blank unless it stands in double quotes. Missing parts are empty.
KALVOR_RULES TSelectorItems getSelectorItemsByDescription(const QString& description);

// The names of a comma-separated list, blanks around them cut. An empty list has none.
KALVOR_RULES QStringList selectorFieldNames(const QString& list);

}  // namespace kalvor
