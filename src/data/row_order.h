// The order of records by index fields.
#pragma once

#include <vector>

#include "data/change_log.h"
#include "data/record_ref.h"

namespace kalvor {

struct IndexField {
  int column = -1;
  bool descending = false;
};

// Null before every value; texts by collation.h. Descending turns the whole order of its field, nulls too.
class RowOrder {
 public:
  RowOrder() = default;
  explicit RowOrder(std::vector<IndexField> fields) : fields_(std::move(fields)) {}

  bool isEmpty() const { return fields_.empty(); }
  const std::vector<IndexField>& fields() const { return fields_; }
  // By the first count fields; below, at or above 0.
  int compare(RecordRef a, RecordRef b, size_t count) const;
  int compare(RecordRef a, RecordRef b) const { return compare(a, b, fields_.size()); }
  // Stable: equal records stay in the order they come in.
  void sort(const RecordSet& records, std::vector<RowId>& rows) const;

 private:
  std::vector<IndexField> fields_;
};

// Numbers that are in the order of a column's values, one for each of the rows; 0 = null.
std::vector<quint64> sortKeys(const Column& column, const std::vector<RowId>& rows);
int compareCells(const Column& a, qsizetype rowA, const Column& b, qsizetype rowB);

}  // namespace kalvor
