// The text of a filter, understood: a tree of conditions over fields by name.
#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "data/variant.h"

namespace kalvor {

enum class CompareOperator : quint8 { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, Like, NotLike };

// A field by its name, or a value: null, text, number or truth.
struct FilterOperand {
  QString field;  // empty: the value counts
  Variant value;

  bool isField() const { return !field.isEmpty(); }
};

// NOT is gone from the tree: it turns the conditions under it around. A comparison with null is neither true
// nor false, so a record with a null field passes no comparison and no turned one; only "= NULL", "<> NULL",
// "IS NULL" and "IS NOT NULL" ask for null itself.
struct FilterNode {
  enum class Kind : quint8 { And, Or, Compare };

  Kind kind = Kind::Compare;
  std::vector<std::unique_ptr<FilterNode>> children;  // of And and Or
  CompareOperator op = CompareOperator::Equal;
  FilterOperand left;
  FilterOperand right;
};

using FilterNodePtr = std::unique_ptr<FilterNode>;

// Null for a blank text. A text that cannot be understood throws DataError, in Bulgarian, with the place.
FilterNodePtr parseFilter(const QString& text);

}  // namespace kalvor
