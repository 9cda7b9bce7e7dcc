#pragma once

#include "data/aggregate.h"

namespace kalvor {

// The expression as arithmetic over the terms that it fills.
std::unique_ptr<ArithmeticNode> parseAggregate(const QString& expression,
                                               const std::function<FilterField(const QString&)>& fieldOf,
                                               std::vector<AggregateTerm>& terms);

}  // namespace kalvor
