#include "data/filter_expression.h"

#include <array>
#include <utility>

#include "data/data_error.h"

namespace kalvor {

namespace {

constexpr int deepestNesting = 200;

enum class TokenKind : quint8 { End, Word, Name, Text, Number, Operator, Open, Close, Comma };

struct Token {
  TokenKind kind = TokenKind::End;
  QString text;
  qsizetype at = 0;
};

[[noreturn]] void filterError(const QString& what, qsizetype at)
{
  throw DataError(QStringLiteral("Грешка във филтъра: %1 (позиция %2)").arg(what).arg(at + 1));
}

bool isWordStart(QChar c)
{
  return c.isLetter() || c == u'_';
}

class FilterLexer {
 public:
  explicit FilterLexer(const QString& text) : text_(text) {}

  Token next()
  {
    while (at_ < text_.size() && text_[at_].isSpace())
      ++at_;
    Token token;
    token.at = at_;
    if (at_ >= text_.size())
      return token;
    const QChar c = text_[at_];
    if (c == u'\'' || c == u'"')
      return quoted(token, c, TokenKind::Text);
    if (c == u'[')
      return bracketed(token);
    if (isWordStart(c))
      return run(token, TokenKind::Word, [](QChar d) { return isWordStart(d) || d.isDigit() || d == u'.'; });
    if (c.isDigit() || (c == u'.' && at_ + 1 < text_.size() && text_[at_ + 1].isDigit()))
      return run(token, TokenKind::Number, [](QChar d) { return d.isDigit() || d == u'.'; });
    return symbol(token);
  }

 private:
  Token quoted(Token token, QChar quote, TokenKind kind)
  {
    token.kind = kind;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == quote) {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != quote) {
          ++at_;
          return token;
        }
        ++at_;
      }
      token.text += text_[at_];
    }
    filterError(QStringLiteral("незатворени кавички"), token.at);
  }

  Token bracketed(Token token)
  {
    const qsizetype end = text_.indexOf(u']', at_);
    if (end < 0)
      filterError(QStringLiteral("незатворена скоба ["), token.at);
    token.kind = TokenKind::Name;
    token.text = text_.mid(at_ + 1, end - at_ - 1).trimmed();
    if (token.text.isEmpty())
      filterError(QStringLiteral("празно име на поле"), token.at);
    at_ = end + 1;
    return token;
  }

  template <typename Belongs>
  Token run(Token token, TokenKind kind, Belongs belongs)
  {
    const qsizetype from = at_;
    while (at_ < text_.size() && belongs(text_[at_]))
      ++at_;
    token.kind = kind;
    token.text = text_.mid(from, at_ - from);
    return token;
  }

  Token symbol(Token token)
  {
    static const std::array<std::pair<const char16_t*, TokenKind>, 11> symbols{{
        {u"<>", TokenKind::Operator}, {u"<=", TokenKind::Operator}, {u">=", TokenKind::Operator},
        {u"!=", TokenKind::Operator}, {u"=", TokenKind::Operator},  {u"<", TokenKind::Operator},
        {u">", TokenKind::Operator},  {u"-", TokenKind::Operator},  {u"(", TokenKind::Open},
        {u")", TokenKind::Close},     {u",", TokenKind::Comma},
    }};
    for (const auto& [text, kind] : symbols) {
      const QStringView view(text);
      if (QStringView(text_).mid(at_).startsWith(view)) {
        at_ += view.size();
        token.kind = kind;
        token.text = view.toString();
        return token;
      }
    }
    filterError(QStringLiteral("неочакван знак '%1'").arg(text_[at_]), at_);
  }

  const QString& text_;
  qsizetype at_ = 0;
};

struct OperatorRow {
  const char16_t* text;
  CompareOperator op;
};

constexpr OperatorRow compareOperators[] = {
    {u"=", CompareOperator::Equal},       {u"<>", CompareOperator::NotEqual},  {u"!=", CompareOperator::NotEqual},
    {u"<", CompareOperator::Less},        {u"<=", CompareOperator::LessOrEqual},
    {u">", CompareOperator::Greater},     {u">=", CompareOperator::GreaterOrEqual},
};

constexpr CompareOperator turned[] = {CompareOperator::NotEqual,      CompareOperator::Equal,
                                      CompareOperator::GreaterOrEqual, CompareOperator::Greater,
                                      CompareOperator::LessOrEqual,   CompareOperator::Less,
                                      CompareOperator::NotLike,       CompareOperator::Like};

// Binding from strong to weak: NOT, AND, OR.
class FilterParser {
 public:
  explicit FilterParser(const QString& text) : lexer_(text) { advance(); }

  FilterNodePtr parse()
  {
    if (token_.kind == TokenKind::End)
      return nullptr;
    FilterNodePtr node = disjunction(false);
    if (token_.kind != TokenKind::End)
      unexpected();
    return node;
  }

 private:
  void advance() { token_ = lexer_.next(); }

  [[noreturn]] void unexpected() const
  {
    if (token_.kind == TokenKind::End)
      filterError(QStringLiteral("изразът не е завършен"), token_.at);
    filterError(QStringLiteral("неочаквано '%1'").arg(token_.text), token_.at);
  }

  bool isWord(const char16_t* word) const
  {
    return token_.kind == TokenKind::Word && token_.text.compare(QStringView(word), Qt::CaseInsensitive) == 0;
  }

  bool takeWord(const char16_t* word)
  {
    const bool found = isWord(word);
    if (found)
      advance();
    return found;
  }

  void expectWord(const char16_t* word)
  {
    if (!takeWord(word))
      unexpected();
  }

  // Under a NOT the two conjunctions change places.
  template <typename Part>
  FilterNodePtr chain(const char16_t* word, bool isAnd, bool negated, Part part)
  {
    FilterNodePtr first = part();
    if (!isWord(word))
      return first;
    auto node = std::make_unique<FilterNode>();
    node->kind = isAnd != negated ? FilterNode::Kind::And : FilterNode::Kind::Or;
    node->children.push_back(std::move(first));
    while (takeWord(word))
      node->children.push_back(part());
    return node;
  }

  FilterNodePtr disjunction(bool negated)
  {
    return chain(u"OR", false, negated, [this, negated] { return conjunction(negated); });
  }

  FilterNodePtr conjunction(bool negated)
  {
    return chain(u"AND", true, negated, [this, negated] { return negation(negated); });
  }

  FilterNodePtr negation(bool negated)
  {
    if (++depth_ > deepestNesting)
      filterError(QStringLiteral("твърде много скоби"), token_.at);
    FilterNodePtr node;
    if (takeWord(u"NOT")) {
      node = negation(!negated);
    } else if (token_.kind == TokenKind::Open) {
      advance();
      node = disjunction(negated);
      if (token_.kind != TokenKind::Close)
        unexpected();
      advance();
    } else {
      node = condition(negated);
    }
    --depth_;
    return node;
  }

  static FilterNodePtr comparison(FilterOperand left, CompareOperator op, FilterOperand right, bool negated)
  {
    auto node = std::make_unique<FilterNode>();
    node->left = std::move(left);
    node->op = negated ? turned[int(op)] : op;
    node->right = std::move(right);
    return node;
  }

  FilterNodePtr condition(bool negated)
  {
    FilterOperand left = operand();
    if (takeWord(u"IS")) {
      const bool isNot = takeWord(u"NOT");
      expectWord(u"NULL");
      return comparison(left, isNot ? CompareOperator::NotEqual : CompareOperator::Equal, {}, negated);
    }
    if (takeWord(u"NOT"))
      negated = !negated;
    if (takeWord(u"LIKE"))
      return comparison(left, CompareOperator::Like, operand(), negated);
    if (takeWord(u"IN"))
      return oneOf(left, negated);
    for (const OperatorRow& row : compareOperators)
      if (token_.kind == TokenKind::Operator && token_.text == QStringView(row.text)) {
        advance();
        return comparison(left, row.op, operand(), negated);
      }
    if (left.isField())  // a truth field alone
      return comparison(left, CompareOperator::Equal, {{}, true}, negated);
    unexpected();
  }

  FilterNodePtr oneOf(const FilterOperand& left, bool negated)
  {
    auto node = std::make_unique<FilterNode>();
    node->kind = negated ? FilterNode::Kind::And : FilterNode::Kind::Or;
    if (token_.kind != TokenKind::Open)
      unexpected();
    do {
      advance();
      node->children.push_back(comparison(left, CompareOperator::Equal, operand(), negated));
    } while (token_.kind == TokenKind::Comma);
    if (token_.kind != TokenKind::Close)
      unexpected();
    advance();
    return node;
  }

  FilterOperand operand()
  {
    const Token token = token_;
    FilterOperand result;
    switch (token.kind) {
      case TokenKind::Name: result.field = token.text; break;
      case TokenKind::Text: result.value = token.text; break;
      case TokenKind::Number: result.value = number(token, false); break;
      case TokenKind::Operator:
        if (token.text != u"-")
          unexpected();
        advance();
        if (token_.kind != TokenKind::Number)
          unexpected();
        result.value = number(token_, true);
        break;
      case TokenKind::Word:
        if (isWord(u"TRUE") || isWord(u"FALSE"))
          result.value = isWord(u"TRUE");
        else if (isWord(u"AND") || isWord(u"OR") || isWord(u"NOT") || isWord(u"LIKE") || isWord(u"IN") || isWord(u"IS"))
          unexpected();
        else if (!isWord(u"NULL"))
          result.field = token.text;
        break;
      default: unexpected();
    }
    advance();
    return result;
  }

  static Variant number(const Token& token, bool negative)
  {
    bool ok = false;
    if (!token.text.contains(u'.')) {
      const qint64 whole = token.text.toLongLong(&ok);
      if (ok)
        return negative ? -whole : whole;
    }
    const double real = token.text.toDouble(&ok);
    if (!ok)
      filterError(QStringLiteral("'%1' не е число").arg(token.text), token.at);
    return negative ? -real : real;
  }

  FilterLexer lexer_;
  Token token_;
  int depth_ = 0;
};

}  // namespace

FilterNodePtr parseFilter(const QString& text)
{
  return FilterParser(text).parse();
}

}  // namespace kalvor
