#include "server/client_sql/client_sql_parser.h"

namespace kalvor::server {

bool ClientSqlParser::name(QString& text)
{
  static const QStringList reserved{
      QStringLiteral("SELECT"), QStringLiteral("FROM"), QStringLiteral("WHERE"), QStringLiteral("JOIN"),
      QStringLiteral("INNER"), QStringLiteral("LEFT"), QStringLiteral("OUTER"), QStringLiteral("ON"),
      QStringLiteral("AND"), QStringLiteral("OR"), QStringLiteral("AS"), QStringLiteral("DISTINCT"),
      QStringLiteral("UNION"), QStringLiteral("ORDER"), QStringLiteral("GROUP"), QStringLiteral("TOP"),
      QStringLiteral("INSERT"), QStringLiteral("INTO"), QStringLiteral("VALUES"), QStringLiteral("UPDATE"),
      QStringLiteral("SET"), QStringLiteral("DELETE"), QStringLiteral("NULL")};
  if (!peek() || !peek()->isName() || reserved.contains(peek()->text.toUpper())) {
    return false;
  }
  text = tokens_.at(at_++).text;
  return true;
}

bool ClientSqlParser::column(SelectColumn& column)
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

bool ClientSqlParser::where(FilterArray& conditions)
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
    conditions.append(row);
    if (!more) {
      return true;
    }
  }
}

bool ClientSqlParser::comparison(FilterRow& row)
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

bool ClientSqlParser::value(Variant& value)
{
  if (word("NULL")) {
    value = Variant();
    return true;
  }
  // N'text' says that the text is Unicode, which every text is here.
  if (isWord("N") && at_ + 1 < tokens_.size() && tokens_.at(at_ + 1).kind == TokenKind::Text &&
      tokens_.at(at_ + 1).begin == tokens_.at(at_).end) {
    ++at_;
  }
  const bool negative = symbol("-");
  if (!peek() || (peek()->kind != TokenKind::Number && (negative || peek()->kind != TokenKind::Text))) {
    return false;
  }
  value = QString(QLatin1StringView(negative ? "-" : "") + tokens_.at(at_++).text);
  return true;
}

bool ClientSqlParser::literal(Variant& literalValue)
{
  if (isWord("NULL") || !value(literalValue)) {
    return false;
  }
  if (tokens_.at(at_ - 1).kind == TokenKind::Text) {
    literalValue = quoted(literalValue.toString());
  }
  return true;
}

}  // namespace kalvor::server
