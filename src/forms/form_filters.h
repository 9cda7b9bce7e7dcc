// How a form's filters come together: the caller's, the rights' (security), the user's (form filter).
#pragma once

#include "data/variant.h"
#include "registry/form_types.h"

namespace kalvor {

// What is sent with the master's request. First the caller's with the security filter, its rows first:
KALVOR_RULES FilterArray callerWithSecurityFilter(const FilterArray& caller, const FilterArray& security);
// then, behind it, the form filter.
KALVOR_RULES FilterArray buildRequestFilter(const FilterArray& callerWithSecurity, const FilterArray& formFilter);

// A condition that no record meets: 1 = 2.
KALVOR_RULES FilterArray noRowFilter();
// "ID" "=" the identifier.
KALVOR_RULES FilterArray recordFilter(const QString& fieldName, const Variant& value);

// What a form's default filter text means when the form opens.
struct DefaultFilterDecision {
  enum class Kind : quint8 {
    None,     // the form has a filter already, is opened to choose records, or has no default
    Use,      // filter is the form filter
    AskUser   // open empty (noRowFilter), then the table filter editor starts with filter
  };
  Kind kind = Kind::None;
  FilterArray filter;
};
KALVOR_RULES DefaultFilterDecision decideDefaultFilter(const QString& defaultFilterText, const FilterArray& formFilter,
                                                       ShowOption options);

// The form filter after the user (or a filter editor) gave a new one. Merging keeps the rows of the current one
// on fields that the new one does not name, each joined with "AND" where it had no conjunction.
KALVOR_RULES FilterArray mergeFormFilter(const FilterArray& current, const FilterArray& publicFilter, bool merge);

}  // namespace kalvor
