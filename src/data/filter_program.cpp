#include "data/filter_program.h"

#include <functional>

#include "data/collation.h"
#include "data/data_error.h"
#include "data/row_order.h"
#include "data/text_pattern.h"
#include "data/value_conversion.h"

namespace kalvor {

namespace {

using Evaluator = std::function<void(const RecordSet&, qsizetype, qsizetype, quint8*)>;

class LeafProgram : public FilterProgram {
 public:
  explicit LeafProgram(Evaluator evaluator) : evaluator_(std::move(evaluator)) {}
  void evaluate(const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) const override
  {
    evaluator_(records, first, last, mask);
  }

 private:
  Evaluator evaluator_;
};

class JoinProgram : public FilterProgram {
 public:
  JoinProgram(bool isAnd, std::vector<FilterProgramPtr> parts) : isAnd_(isAnd), parts_(std::move(parts)) {}

  void evaluate(const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) const override
  {
    parts_.front()->evaluate(records, first, last, mask);
    RecordMask other(size_t(last - first));
    for (size_t part = 1; part < parts_.size(); ++part) {
      parts_[part]->evaluate(records, first, last, other.data());
      for (size_t i = 0; i < other.size(); ++i)
        mask[i] = isAnd_ ? mask[i] & other[i] : mask[i] | other[i];
    }
  }

 private:
  bool isAnd_;
  std::vector<FilterProgramPtr> parts_;
};

FilterProgramPtr leaf(Evaluator evaluator)
{
  return std::make_unique<LeafProgram>(std::move(evaluator));
}

FilterProgramPtr constantLeaf(bool passes)
{
  return leaf([passes](const RecordSet&, qsizetype first, qsizetype last, quint8* mask) {
    for (qsizetype row = first; row < last; ++row)
      mask[row - first] = passes;
  });
}

bool holds(CompareOperator op, int order)
{
  switch (op) {
    case CompareOperator::Equal: return order == 0;
    case CompareOperator::NotEqual: return order != 0;
    case CompareOperator::Less: return order < 0;
    case CompareOperator::LessOrEqual: return order <= 0;
    case CompareOperator::Greater: return order > 0;
    case CompareOperator::GreaterOrEqual: return order >= 0;
    default: return false;
  }
}

// The operator that says the same with its sides exchanged.
CompareOperator mirrored(CompareOperator op)
{
  switch (op) {
    case CompareOperator::Less: return CompareOperator::Greater;
    case CompareOperator::LessOrEqual: return CompareOperator::GreaterOrEqual;
    case CompareOperator::Greater: return CompareOperator::Less;
    case CompareOperator::GreaterOrEqual: return CompareOperator::LessOrEqual;
    default: return op;
  }
}

template <typename T, typename Compare>
void scanValues(const std::vector<T>& values, T wanted, const Column& column, qsizetype first, qsizetype last,
                quint8* mask, Compare compare)
{
  const T* data = values.data();
  for (qsizetype row = first; row < last; ++row)
    mask[row - first] = quint8(compare(data[row], wanted)) & quint8(!column.isNull(row));
}

template <typename T>
Evaluator numberEvaluator(CompareOperator op, int column, T wanted, const std::vector<T>& (Column::*values)() const)
{
  return [=](const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) {
    const Column& c = records.columns[size_t(column)];
    const auto scan = [&](auto compare) { scanValues((c.*values)(), wanted, c, first, last, mask, compare); };
    switch (op) {
      case CompareOperator::Equal: scan(std::equal_to<T>()); break;
      case CompareOperator::NotEqual: scan(std::not_equal_to<T>()); break;
      case CompareOperator::Less: scan(std::less<T>()); break;
      case CompareOperator::LessOrEqual: scan(std::less_equal<T>()); break;
      case CompareOperator::Greater: scan(std::greater<T>()); break;
      default: scan(std::greater_equal<T>()); break;
    }
  };
}

// For every record with a value: what the test says of it.
template <typename Test>
Evaluator cellEvaluator(int column, Test test)
{
  return [=](const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) {
    const Column& c = records.columns[size_t(column)];
    for (qsizetype row = first; row < last; ++row)
      mask[row - first] = !c.isNull(row) && test(c, row);
  };
}

class FilterCompiler {
 public:
  FilterCompiler(const std::function<FilterField(const QString&)>& fieldOf, bool caseInsensitive)
    : fieldOf_(fieldOf), caseInsensitive_(caseInsensitive)
  {
  }

  FilterProgramPtr compile(const FilterNode& node) const
  {
    if (node.kind == FilterNode::Kind::Compare)
      return compileComparison(node);
    std::vector<FilterProgramPtr> parts;
    for (const FilterNodePtr& child : node.children)
      parts.push_back(compile(*child));
    return std::make_unique<JoinProgram>(node.kind == FilterNode::Kind::And, std::move(parts));
  }

 private:
  FilterProgramPtr compileComparison(const FilterNode& node) const
  {
    if (node.left.isField() && node.right.isField())
      return compareFields(node);
    if (node.left.isField())
      return compareField(fieldOf_(node.left.field), node.op, node.right.value, node.left.field);
    if (node.right.isField())
      return compareField(fieldOf_(node.right.field), mirrored(node.op), node.left.value, node.right.field);
    return compareConstants(node);
  }

  FilterProgramPtr compareField(FilterField field, CompareOperator op, const Variant& value, const QString& name) const
  {
    if (isNull(value))
      return compareWithNull(field.column, op);
    if (op == CompareOperator::Like || op == CompareOperator::NotLike)
      return like(field, op, variantText(value));
    if (storageOf(field.type) == StorageKind::Text)
      return compareTexts(field.column, op, variantText(value));
    // A whole-number field against 2.5 must not compare with 3.
    if (isIntegerType(field.type) && value.typeId() == QMetaType::Double) {
      const double wanted = value.toDouble();
      return leaf(cellEvaluator(field.column, [op, wanted](const Column& c, qsizetype row) {
        const double own = double(c.integerAt(row));
        return holds(op, own < wanted ? -1 : own > wanted ? 1 : 0);
      }));
    }
    const std::optional<Variant> converted = convertedValue(field.type, value, TextForm::Invariant);
    if (!converted)
      throw DataError(QStringLiteral("Грешка във филтъра: '%2' е невалидна стойност за поле '%1'")
                          .arg(name, variantText(value)));
    if (isNull(*converted))
      return compareWithNull(field.column, op);
    switch (storageOf(field.type)) {
      case StorageKind::Integer: {
        const qint64 wanted = storedInteger(field.type, *converted);
        return leaf(numberEvaluator<qint64>(op, field.column, wanted, &Column::integers));
      }
      case StorageKind::Real:
        return leaf(numberEvaluator<double>(op, field.column, converted->toDouble(), &Column::reals));
      default: {
        const QByteArray wanted = converted->toByteArray();
        return leaf(cellEvaluator(field.column, [op, wanted](const Column& c, qsizetype row) {
          return holds(op, c.blobAt(row) < wanted ? -1 : c.blobAt(row) == wanted ? 0 : 1);
        }));
      }
    }
  }

  static FilterProgramPtr compareWithNull(int column, CompareOperator op)
  {
    const bool wantNull = op == CompareOperator::Equal;
    if (!wantNull && op != CompareOperator::NotEqual)
      return constantLeaf(false);
    return leaf([column, wantNull](const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) {
      const Column& c = records.columns[size_t(column)];
      for (qsizetype row = first; row < last; ++row)
        mask[row - first] = c.isNull(row) == wantNull;
    });
  }

  FilterProgramPtr compareTexts(int column, CompareOperator op, const QString& wanted) const
  {
    const bool equality = op == CompareOperator::Equal || op == CompareOperator::NotEqual;
    if (!equality)
      return leaf(cellEvaluator(column, [op, wanted](const Column& c, qsizetype row) {
        return holds(op, compareText(c.textAt(row), wanted));
      }));
    const bool equal = op == CompareOperator::Equal;
    if (!caseInsensitive_)
      return leaf(cellEvaluator(column, [equal, wanted](const Column& c, qsizetype row) {
        return (c.textAt(row) == wanted) == equal;
      }));
    const QString folded = foldedText(wanted);
    return leaf(cellEvaluator(column, [equal, folded](const Column& c, qsizetype row) {
      return equalFolded(c.textAt(row), folded) == equal;
    }));
  }

  FilterProgramPtr like(FilterField field, CompareOperator op, const QString& wanted) const
  {
    const TextPattern pattern(wanted, caseInsensitive_);
    const bool wantMatch = op == CompareOperator::Like;
    const int column = field.column;
    if (storageOf(field.type) != StorageKind::Text)
      return leaf(cellEvaluator(column, [=](const Column& c, qsizetype row) {
        return pattern.matches(userText(field.type, cellValue(c, field.type, row))) == wantMatch;
      }));
    return leaf([=](const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) {
      const Column& c = records.columns[size_t(column)];
      pattern.matchColumn(c, first, last, mask);
      if (!wantMatch)
        for (qsizetype row = first; row < last; ++row)
          mask[row - first] = quint8(!mask[row - first]) & quint8(!c.isNull(row));
    });
  }

  FilterProgramPtr compareFields(const FilterNode& node) const
  {
    const FilterField a = fieldOf_(node.left.field);
    const FilterField b = fieldOf_(node.right.field);
    const CompareOperator op = node.op;
    const bool likeness = op == CompareOperator::Like || op == CompareOperator::NotLike;
    const bool numbers = isNumericType(a.type) && isNumericType(b.type);
    const bool dates = a.type == b.type || (isNumericType(a.type) == isNumericType(b.type) &&
                                            storageOf(a.type) == StorageKind::Text && isTextType(b.type));
    if (likeness || (!numbers && !dates))
      throw DataError(QStringLiteral("Грешка във филтъра: полетата '%1' и '%2' не могат да се сравнят")
                          .arg(node.left.field, node.right.field));
    const bool fold = caseInsensitive_;
    return leaf([=](const RecordSet& records, qsizetype first, qsizetype last, quint8* mask) {
      const Column& left = records.columns[size_t(a.column)];
      const Column& right = records.columns[size_t(b.column)];
      const auto order = [&](qsizetype row) {
        if (left.kind() != right.kind()) {
          const double l = left.kind() == StorageKind::Real ? left.realAt(row) : double(left.integerAt(row));
          const double r = right.kind() == StorageKind::Real ? right.realAt(row) : double(right.integerAt(row));
          return l < r ? -1 : l > r ? 1 : 0;
        }
        if (left.kind() == StorageKind::Text && fold && equalFolded(left.textAt(row), right.textAt(row)))
          return 0;
        const int result = compareCells(left, row, right, row);
        const bool different = result == 0 && left.kind() == StorageKind::Text &&
                               left.textAt(row) != right.textAt(row);
        return different ? (left.textAt(row) < right.textAt(row) ? -1 : 1) : result;
      };
      for (qsizetype row = first; row < last; ++row)
        mask[row - first] = !left.isNull(row) && !right.isNull(row) && holds(op, order(row));
    });
  }

  FilterProgramPtr compareConstants(const FilterNode& node) const
  {
    const Variant& a = node.left.value;
    const Variant& b = node.right.value;
    if (isNull(a) || isNull(b)) {
      const bool both = isNull(a) && isNull(b);
      return constantLeaf(node.op == CompareOperator::Equal ? both : node.op == CompareOperator::NotEqual && !both);
    }
    if (node.op == CompareOperator::Like || node.op == CompareOperator::NotLike)
      return constantLeaf(TextPattern(variantText(b), caseInsensitive_).matches(variantText(a)) ==
                          (node.op == CompareOperator::Like));
    const std::optional<Variant> left = convertedValue(DataType::Float, a, TextForm::Invariant);
    const std::optional<Variant> right = convertedValue(DataType::Float, b, TextForm::Invariant);
    if (left && right)
      return constantLeaf(holds(node.op, left->toDouble() < right->toDouble()   ? -1
                                         : left->toDouble() > right->toDouble() ? 1
                                                                                : 0));
    return constantLeaf(holds(node.op, compareText(variantText(a), variantText(b))));
  }

  const std::function<FilterField(const QString&)>& fieldOf_;
  bool caseInsensitive_;
};

}  // namespace

FilterProgramPtr compileFilter(const FilterNode& node, const std::function<FilterField(const QString&)>& fieldOf,
                               bool caseInsensitive)
{
  return FilterCompiler(fieldOf, caseInsensitive).compile(node);
}

}  // namespace kalvor
