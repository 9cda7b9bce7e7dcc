#include "server/client_sql/client_select.h"

namespace kalvor::server {

namespace {

// Reads the grammar of parseClientSelect; every step returns false when the text is something else.
class ClientSelectParser {
 public:
  explicit ClientSelectParser(QList<SqlToken> tokens) : tokens_(std::move(tokens)) {}

  bool parse(ClientSelect& select)
  {
    return word("SELECT") && columns(select) && word("FROM") && name(select.table) && joins(select) && where(select) &&
           at_ == tokens_.size();
  }

 private:
  const SqlToken* peek() const { return at_ < tokens_.size() ? &tokens_.at(at_) : nullptr; }
  bool isWord(const char* text) const { return peek() && peek()->isWord(text); }
  bool isSymbol(const char* text) const { return peek() && peek()->isSymbol(text); }
  bool word(const char* text) { return isWord(text) && ++at_; }
  bool symbol(const char* text) { return isSymbol(text) && ++at_; }

  bool name(QString& text)
  {
    static const QStringList reserved{
        QStringLiteral("SELECT"), QStringLiteral("FROM"), QStringLiteral("WHERE"), QStringLiteral("JOIN"),
        QStringLiteral("INNER"), QStringLiteral("LEFT"), QStringLiteral("OUTER"), QStringLiteral("ON"),
        QStringLiteral("AND"), QStringLiteral("OR"), QStringLiteral("AS"), QStringLiteral("DISTINCT"),
        QStringLiteral("UNION"), QStringLiteral("ORDER"), QStringLiteral("GROUP"), QStringLiteral("TOP")};
    if (!peek() || !peek()->isName() || reserved.contains(peek()->text.toUpper())) {
      return false;
    }
    text = tokens_.at(at_++).text;
    return true;
  }

  bool column(SelectColumn& column)
  {
    if (!name(column.column)) {
      return false;
    }
    if (symbol(".")) {
      column.table = column.column;
      return name(column.column);
    }
    return true;
  }

  bool columns(ClientSelect& select)
  {
    do {
      SelectColumn item;
      if (!column(item) || (word("AS") && !name(item.name))) {
        return false;
      }
      select.columns.append(item);
    } while (symbol(","));
    return true;
  }

  bool joins(ClientSelect& select)
  {
    while (isWord("INNER") || isWord("LEFT") || isWord("JOIN")) {
      SelectJoin join;
      join.left = word("LEFT");
      if (join.left) {
        word("OUTER");
      } else {
        word("INNER");
      }
      if (!word("JOIN") || !name(join.table) || !word("ON")) {
        return false;
      }
      do {
        ColumnPair pair;
        if (!column(pair.left) || !symbol("=") || !column(pair.right)) {
          return false;
        }
        join.equal.append(pair);
      } while (word("AND"));
      select.joins.append(join);
    }
    return true;
  }

  bool where(ClientSelect& select)
  {
    if (!word("WHERE")) {
      return true;
    }
    while (true) {
      FilterRow row;
      while (symbol("(")) {
        row.brackets += u'(';
      }
      if (!comparison(row)) {
        return false;
      }
      while (symbol(")")) {
        row.brackets += u')';
      }
      const bool isAnd = word("AND");
      const bool more = isAnd || word("OR");
      row.conjunction = QLatin1StringView(isAnd ? "AND" : more ? "OR" : "");
      select.where.append(row);
      if (!more) {
        return true;
      }
    }
  }

  bool comparison(FilterRow& row)
  {
    SelectColumn left;
    if (!column(left)) {
      return false;
    }
    row.field = left.table.isEmpty() ? left.column : left.table + u'.' + left.column;
    if (word("IS")) {
      row.op = QLatin1StringView(word("NOT") ? "is not" : "is");
      row.value = QStringLiteral("null");
      return word("NULL");
    }
    static constexpr const char* symbols[] = {"=", "<>", "<=", ">=", "<", ">"};
    for (const char* op : symbols) {
      if (symbol(op)) {
        row.op = QLatin1StringView(op);
        return literal(row.value);
      }
    }
    row.op = QStringLiteral("LIKE");
    return word("LIKE") && literal(row.value);
  }

  bool literal(Variant& value)
  {
    const bool negative = symbol("-");
    if (!peek() || (peek()->kind != TokenKind::Number && (negative || peek()->kind != TokenKind::Text))) {
      return false;
    }
    const SqlToken& token = tokens_.at(at_++);
    value = token.kind == TokenKind::Text ? quoted(token.text) : QLatin1StringView(negative ? "-" : "") + token.text;
    return true;
  }

  QList<SqlToken> tokens_;
  qsizetype at_ = 0;
};

}  // namespace

std::optional<ClientSelect> parseClientSelect(const QString& sql)
{
  auto tokens = tokenizeSql(sql);
  ClientSelect select;
  return tokens && ClientSelectParser(std::move(*tokens)).parse(select) ? std::optional(select) : std::nullopt;
}

std::optional<ClientSelect> tableSelect(const QString& table, const QString& columns)
{
  return parseClientSelect(QStringLiteral("SELECT %1 FROM %2").arg(columns, quotedName(table.trimmed())));
}

}  // namespace kalvor::server
