// Filter arrays as conditions of a statement: fields resolved, values bound, nothing of them pasted.
//
// Rows are joined as they would be in a statement: AND before OR, brackets as given, an empty conjunction before a
// further row is AND. A comparison with null is never true. A value of an integer, amount or date column that is
// the empty text equals nothing and differs from everything but null.
#pragma once

#include "server/catalogue/stored_query.h"

namespace kalvor::server {

// Empty for the absent filter. Throws RpcError (Refused, Bulgarian text) for an unknown field or operator, a value
// that does not suit its field, brackets without a pair, and more rows, values or brackets in one another than below.
KALVOR_SERVER Fragment filterCondition(const FilterArray& filter, const FieldResolver& fields);

constexpr qsizetype maxFilterRows = 500;
constexpr qsizetype maxFilterValues = 20'000;  // of all rows together
constexpr qsizetype maxFilterDepth = 40;       // of brackets; SQLite reads no statement with a hundred

}  // namespace kalvor::server
