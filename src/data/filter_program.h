// A filter made ready for the columns of a dataset: evaluated for many records at once.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "data/filter_expression.h"
#include "data/record_set.h"

namespace kalvor {

// What a filter needs to know of a field.
struct FilterField {
  int column = -1;
  DataType type = DataType::Unknown;
};

// One byte a record: 1 passes, 0 does not.
using RecordMask = std::vector<quint8>;

class FilterProgram {
 public:
  virtual ~FilterProgram() = default;
  // For the records [first, last); the mask has one byte for each.
  virtual void evaluate(const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) const = 0;
};

using FilterProgramPtr = std::unique_ptr<FilterProgram>;

// fieldOf tells the field of a name and throws DataError for one that there is not, or that has no column.
// A value that does not convert to the type of the field it is compared with throws DataError.
FilterProgramPtr compileFilter(const FilterNode& node, const std::function<FilterField(const QString&)>& fieldOf,
                               bool caseInsensitive);

}  // namespace kalvor
