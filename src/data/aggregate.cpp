#include "data/aggregate.h"

#include <array>
#include <bit>
#include <cmath>

#include "data/aggregate_parser.h"
#include "data/row_order.h"

namespace kalvor {

namespace {

std::optional<double> combined(ArithmeticNode::Kind kind, double a, double b)
{
  switch (kind) {
    case ArithmeticNode::Kind::Add: return a + b;
    case ArithmeticNode::Kind::Subtract: return a - b;
    case ArithmeticNode::Kind::Multiply: return a * b;
    case ArithmeticNode::Kind::Negate: return -a;
    default: return b == 0 ? std::nullopt : std::optional(a / b);
  }
}

// The argument of a function for one record; nothing when a field in it is null.
std::optional<double> argumentOf(const ArithmeticNode& node, const RecordSet& records, RowId row)
{
  if (node.kind == ArithmeticNode::Kind::Number)
    return node.number;
  if (node.kind == ArithmeticNode::Kind::Field) {
    const Column& column = records.columns[size_t(node.field.column)];
    if (column.isNull(row))
      return {};
    return column.kind() == StorageKind::Real ? column.realAt(row) : double(column.integerAt(row));
  }
  const std::optional<double> left = argumentOf(*node.left, records, row);
  const std::optional<double> right = node.right ? argumentOf(*node.right, records, row) : 0.0;
  return left && right ? combined(node.kind, *left, *right) : std::nullopt;
}

bool isExtreme(AggregateFunction function)
{
  return function == AggregateFunction::Min || function == AggregateFunction::Max;
}

void considerExtreme(AggregateTerm& term, const RecordSet& records, RowId row)
{
  const int wanted = term.function == AggregateFunction::Min ? -1 : 1;
  int order = wanted;
  if (term.isPlainField() && term.extremeRow != noRow) {
    const Column& column = records.columns[size_t(term.argument->field.column)];
    order = compareCells(column, row, column, term.extremeRow);
  } else if (!term.isPlainField()) {
    const double value = *argumentOf(*term.argument, records, row);
    if (term.extremeRow != noRow)
      order = value < term.extreme ? -1 : value > term.extreme ? 1 : 0;
    if (order == wanted)
      term.extreme = value;
  }
  if (order == wanted)
    term.extremeRow = row;
}

bool hasValue(const AggregateTerm& term, const RecordSet& records, RowId row)
{
  if (!term.argument)
    return true;
  if (term.isPlainField())
    return !records.columns[size_t(term.argument->field.column)].isNull(row);
  return argumentOf(*term.argument, records, row).has_value();
}

void enterTerm(AggregateTerm& term, const RecordSet& records, RowId row)
{
  if (!hasValue(term, records, row))
    return;
  ++term.count;
  if (isExtreme(term.function)) {
    considerExtreme(term, records, row);
  } else if (term.function != AggregateFunction::Count) {
    term.sum.add(*argumentOf(*term.argument, records, row));
    if (term.isPlainField() && isIntegerType(term.argument->field.type))
      term.wholeSum += quint64(records.columns[size_t(term.argument->field.column)].integerAt(row));
  }
}

// False: only a new scan can tell.
bool leaveTerm(AggregateTerm& term, const RecordSet& records, RowId row)
{
  if (!hasValue(term, records, row))
    return true;
  --term.count;
  if (isExtreme(term.function))
    return term.extremeRow != row;
  if (term.function == AggregateFunction::Count)
    return true;
  if (term.count == 0)
    term.sum = {};
  else
    term.sum.add(-*argumentOf(*term.argument, records, row));
  if (term.isPlainField() && isIntegerType(term.argument->field.type))
    term.wholeSum -= quint64(records.columns[size_t(term.argument->field.column)].integerAt(row));
  return std::isfinite(term.sum.value());
}

void clearTerm(AggregateTerm& term)
{
  term.sum = {};
  term.wholeSum = 0;
  term.count = 0;
  term.extremeRow = noRow;
}

qint64 nonNullCount(const Column& column)
{
  qint64 nulls = 0;
  for (quint64 word : column.nullBits())
    nulls += std::popcount(word);
  return column.size() - nulls;
}

// Sums of a whole real column, whose nulls hold zero.
bool scanWholeColumn(AggregateTerm& term, const RecordSet& records)
{
  const bool sums = term.function == AggregateFunction::Sum || term.function == AggregateFunction::Avg;
  if (!sums || !term.isPlainField())
    return false;
  const Column& column = records.columns[size_t(term.argument->field.column)];
  if (column.kind() != StorageKind::Real)
    return false;
  term.sum = ExactSum::of(column.reals().data(), column.reals().size());
  term.count = nonNullCount(column);
  return true;
}

}  // namespace

// Lanes that do not wait for each other.
ExactSum ExactSum::of(const double* values, size_t count)
{
  constexpr size_t lanes = 8;
  std::array<double, lanes> high{};
  std::array<double, lanes> low{};
  size_t i = 0;
  for (; i + lanes <= count; i += lanes)
    for (size_t lane = 0; lane < lanes; ++lane) {
      const double value = values[i + lane];
      const double sum = high[lane] + value;
      const double part = sum - high[lane];
      low[lane] += (high[lane] - (sum - part)) + (value - part);
      high[lane] = sum;
    }
  ExactSum total;
  for (size_t lane = 0; lane < lanes; ++lane) {
    total.add(high[lane]);
    total.low_ += low[lane];
  }
  for (; i < count; ++i)
    total.add(values[i]);
  return total;
}

Aggregate::Aggregate(const QString& expression, const std::function<FilterField(const QString&)>& fieldOf)
{
  root_ = parseAggregate(expression, fieldOf, terms_);
}

void Aggregate::enter(const RecordSet& records, RowId row)
{
  if (valid_)
    for (AggregateTerm& term : terms_)
      enterTerm(term, records, row);
}

void Aggregate::leave(const RecordSet& records, RowId row)
{
  if (valid_)
    for (AggregateTerm& term : terms_)
      valid_ = leaveTerm(term, records, row) && valid_;
}

void Aggregate::scan(const RecordSet& records, const std::vector<RowId>& view, bool everything)
{
  for (AggregateTerm& term : terms_) {
    clearTerm(term);
    if (everything && scanWholeColumn(term, records))
      continue;
    for (RowId row : view)
      if (row != noRow)
        enterTerm(term, records, row);
  }
  valid_ = true;
}

Variant Aggregate::value(const RecordSet& records, const std::vector<RowId>& view, bool everything)
{
  if (!valid_)
    scan(records, view, everything);
  return evaluate(*root_, records);
}

Variant Aggregate::termValue(const AggregateTerm& term, const RecordSet& records) const
{
  if (term.function == AggregateFunction::Count)
    return term.count;
  if (term.count == 0)
    return {};
  if (isExtreme(term.function)) {
    if (!term.isPlainField())
      return term.extreme;
    const FilterField field = term.argument->field;
    return cellValue(records.columns[size_t(field.column)], field.type, term.extremeRow);
  }
  if (term.function == AggregateFunction::Avg)
    return term.sum.value() / double(term.count);
  if (term.isPlainField() && isIntegerType(term.argument->field.type))
    return qint64(term.wholeSum);
  return term.sum.value();
}

Variant Aggregate::evaluate(const ArithmeticNode& node, const RecordSet& records) const
{
  if (node.kind == ArithmeticNode::Kind::Function)
    return termValue(terms_[node.function], records);
  if (node.kind == ArithmeticNode::Kind::Number)
    return node.number;
  const Variant left = evaluate(*node.left, records);
  const Variant right = node.right ? evaluate(*node.right, records) : Variant(0.0);
  if (isNull(left) || isNull(right))
    return {};
  const std::optional<double> result = combined(node.kind, left.toDouble(), right.toDouble());
  return result ? Variant(*result) : Variant();
}

}  // namespace kalvor
