// An aggregate expression over the records of a view, kept up to date by what comes and goes.
//
// SUM, AVG, MIN, MAX of a field or of arithmetic over fields, COUNT of either or of *, and arithmetic (+ - * /,
// brackets, numbers) between them. Nulls do not count; over no values everything but COUNT is null, and null
// makes the arithmetic around it null. SUM of whole numbers is a whole number.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "data/change_log.h"
#include "data/filter_program.h"

namespace kalvor {

// A sum that keeps what rounding takes away, so that adding and removing the same amounts comes back to zero.
class ExactSum {
 public:
  void add(double value)
  {
    const double sum = high_ + value;
    const double part = sum - high_;
    low_ += (high_ - (sum - part)) + (value - part);
    high_ = sum;
  }
  double value() const { return high_ + low_; }
  static ExactSum of(const double* values, size_t count);

 private:
  double high_ = 0;
  double low_ = 0;
};

enum class AggregateFunction : quint8 { Sum, Avg, Min, Max, Count };

struct ArithmeticNode {
  enum class Kind : quint8 { Number, Field, Function, Add, Subtract, Multiply, Divide, Negate };

  Kind kind = Kind::Number;
  double number = 0;
  FilterField field;
  size_t function = 0;  // index of the term
  std::unique_ptr<ArithmeticNode> left;
  std::unique_ptr<ArithmeticNode> right;
};

// One function call of the expression.
struct AggregateTerm {
  AggregateFunction function = AggregateFunction::Count;
  std::unique_ptr<ArithmeticNode> argument;  // null: COUNT(*)
  ExactSum sum;
  quint64 wholeSum = 0;
  qint64 count = 0;
  double extreme = 0;       // of an argument that is arithmetic
  RowId extremeRow = noRow;

  bool isPlainField() const { return argument && argument->kind == ArithmeticNode::Kind::Field; }
};

class Aggregate {
 public:
  // DataError, in Bulgarian, for an expression that cannot be understood or computed.
  Aggregate(const QString& expression, const std::function<FilterField(const QString&)>& fieldOf);

  void invalidate() { valid_ = false; }
  void enter(const RecordSet& records, RowId row);
  void leave(const RecordSet& records, RowId row);
  // everything: the view holds all the records in any order.
  Variant value(const RecordSet& records, const std::vector<RowId>& view, bool everything);

 private:
  void scan(const RecordSet& records, const std::vector<RowId>& view, bool everything);
  Variant termValue(const AggregateTerm& term, const RecordSet& records) const;
  Variant evaluate(const ArithmeticNode& node, const RecordSet& records) const;

  std::vector<AggregateTerm> terms_;
  std::unique_ptr<ArithmeticNode> root_;
  bool valid_ = false;
};

}  // namespace kalvor
