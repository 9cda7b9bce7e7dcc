#include "data/aggregate_parser.h"

#include "data/data_error.h"

namespace kalvor {

namespace {

constexpr int deepestArithmetic = 100;

struct FunctionRow {
  const char16_t* name;
  AggregateFunction function;
};

constexpr FunctionRow functionRows[] = {
    {u"SUM", AggregateFunction::Sum}, {u"AVG", AggregateFunction::Avg},     {u"MIN", AggregateFunction::Min},
    {u"MAX", AggregateFunction::Max}, {u"COUNT", AggregateFunction::Count},
};

class AggregateParser {
 public:
  using NodePtr = std::unique_ptr<ArithmeticNode>;

  AggregateParser(const QString& text, const std::function<FilterField(const QString&)>& fieldOf,
                  std::vector<AggregateTerm>& terms)
    : text_(text), fieldOf_(fieldOf), terms_(terms)
  {
  }

  NodePtr parse()
  {
    NodePtr node = sum();
    if (peek() != QChar())
      fail();
    return node;
  }

 private:
  [[noreturn]] void fail() const
  {
    throw DataError(QStringLiteral("Грешка в агрегатния израз '%1' (позиция %2)").arg(text_).arg(at_ + 1));
  }

  QChar peek()
  {
    while (at_ < text_.size() && text_[at_].isSpace())
      ++at_;
    return at_ < text_.size() ? text_[at_] : QChar();
  }

  bool take(char16_t c)
  {
    const bool found = peek() == c;
    at_ += found;
    return found;
  }

  static NodePtr binary(ArithmeticNode::Kind kind, NodePtr left, NodePtr right)
  {
    auto node = std::make_unique<ArithmeticNode>();
    node->kind = kind;
    node->left = std::move(left);
    node->right = std::move(right);
    return node;
  }

  NodePtr sum()
  {
    NodePtr node = product();
    for (;;) {
      if (take(u'+'))
        node = binary(ArithmeticNode::Kind::Add, std::move(node), product());
      else if (take(u'-'))
        node = binary(ArithmeticNode::Kind::Subtract, std::move(node), product());
      else
        return node;
    }
  }

  NodePtr product()
  {
    NodePtr node = factor();
    for (;;) {
      if (take(u'*'))
        node = binary(ArithmeticNode::Kind::Multiply, std::move(node), factor());
      else if (take(u'/'))
        node = binary(ArithmeticNode::Kind::Divide, std::move(node), factor());
      else
        return node;
    }
  }

  NodePtr factor()
  {
    if (++depth_ > deepestArithmetic || ++nodes_ > 1000)
      fail();
    NodePtr node;
    const QChar c = peek();
    if (take(u'(')) {
      node = sum();
      if (!take(u')'))
        fail();
    } else if (take(u'-')) {
      node = binary(ArithmeticNode::Kind::Negate, factor(), nullptr);
    } else if (c.isDigit() || c == u'.') {
      node = number();
    } else {
      node = named();
    }
    --depth_;
    return node;
  }

  NodePtr number()
  {
    const qsizetype from = at_;
    while (at_ < text_.size() && (text_[at_].isDigit() || text_[at_] == u'.'))
      ++at_;
    bool ok = false;
    auto node = std::make_unique<ArithmeticNode>();
    node->number = text_.mid(from, at_ - from).toDouble(&ok);
    if (!ok)
      fail();
    return node;
  }

  QString name()
  {
    if (take(u'[')) {
      const qsizetype end = text_.indexOf(u']', at_);
      if (end < 0)
        fail();
      const QString found = text_.mid(at_, end - at_).trimmed();
      at_ = end + 1;
      return found;
    }
    const qsizetype from = at_;
    while (at_ < text_.size() && (text_[at_].isLetterOrNumber() || text_[at_] == u'_'))
      ++at_;
    if (at_ == from)
      fail();
    return text_.mid(from, at_ - from);
  }

  NodePtr named()
  {
    const QString word = name();
    auto node = std::make_unique<ArithmeticNode>();
    if (inFunction_) {
      node->kind = ArithmeticNode::Kind::Field;
      node->field = fieldOf_(word);
      return node;
    }
    for (const FunctionRow& row : functionRows)
      if (word.compare(QStringView(row.name), Qt::CaseInsensitive) == 0) {
        AggregateTerm term = call(row.function);
        node->kind = ArithmeticNode::Kind::Function;
        node->function = terms_.size();
        terms_.push_back(std::move(term));
        return node;
      }
    fail();
  }

  AggregateTerm call(AggregateFunction function)
  {
    AggregateTerm term;
    term.function = function;
    if (!take(u'('))
      fail();
    if (function == AggregateFunction::Count && take(u'*')) {
      if (!take(u')'))
        fail();
      return term;
    }
    inFunction_ = true;
    term.argument = sum();
    inFunction_ = false;
    if (!take(u')'))
      fail();
    const bool computes = function == AggregateFunction::Sum || function == AggregateFunction::Avg;
    if (computes || !term.isPlainField())
      checkNumeric(*term.argument);
    return term;
  }

  void checkNumeric(const ArithmeticNode& node) const
  {
    if (node.kind == ArithmeticNode::Kind::Field && !isNumericType(node.field.type))
      fail();
    if (node.left)
      checkNumeric(*node.left);
    if (node.right)
      checkNumeric(*node.right);
  }

  const QString& text_;
  const std::function<FilterField(const QString&)>& fieldOf_;
  std::vector<AggregateTerm>& terms_;
  qsizetype at_ = 0;
  int depth_ = 0;
  int nodes_ = 0;
  bool inFunction_ = false;
};

}  // namespace

std::unique_ptr<ArithmeticNode> parseAggregate(const QString& expression,
                                               const std::function<FilterField(const QString&)>& fieldOf,
                                               std::vector<AggregateTerm>& terms)
{
  return AggregateParser(expression, fieldOf, terms).parse();
}

}  // namespace kalvor
