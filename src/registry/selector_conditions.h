// Which item of a selector description the edited record meets.
#pragma once

#include <functional>

#include "registry/selector_items.h"

namespace kalvor {

class SelectorControl;

// Gives the value that a text of a condition stands for; usually ReturnFilterFieldValue.
using SelectorValueFunction =
    std::function<Variant(const QString& value, TClientDataSet* dataSet, const SelectorControl* control, QObject* owner)>;

// The rows of a condition strictly from left to right, without precedence. No rows: true. LIKE tests membership: the
// left text occurs within the right one. Numbers compare as numbers, a number with a text by reading the text.
KALVOR_RULES bool CheckCondition(const FilterArray& condition, TClientDataSet* dataSet, QObject* owner,
                                 const SelectorControl* control, const SelectorValueFunction& valueOf);

// The first item whose condition holds, -1 for none.
KALVOR_RULES int GetSelectorIndexFromCondition(const TSelectorItems& items, TClientDataSet* dataSet, QObject* owner,
                                               const SelectorControl* control, const SelectorValueFunction& valueOf);

}  // namespace kalvor
