// The words that the statements of a client have in common, read one after the other: every step takes its tokens and
// returns true, or returns false when the text is something else.
#pragma once

#include "server/client_sql/client_select.h"

namespace kalvor::server {

class ClientSqlParser {
 public:
  explicit ClientSqlParser(QList<SqlToken> tokens) : tokens_(std::move(tokens)) {}

 protected:
  const SqlToken* peek() const { return at_ < tokens_.size() ? &tokens_.at(at_) : nullptr; }
  bool isAtEnd() const { return at_ == tokens_.size(); }
  bool isWord(const char* text) const { return peek() && peek()->isWord(text); }
  bool isSymbol(const char* text) const { return peek() && peek()->isSymbol(text); }
  bool word(const char* text) { return isWord(text) && ++at_; }
  bool symbol(const char* text) { return isSymbol(text) && ++at_; }

  // No word of the grammar.
  bool name(QString& text);
  // "Column" or "Table.Column".
  bool column(SelectColumn& column);
  // WHERE comparisons with literals; also when there is no WHERE.
  bool where(FilterArray& conditions);
  // A text or a number as text, null for NULL.
  bool value(Variant& value);

 private:
  bool comparison(FilterRow& row);
  // A value as filters have it: texts in quotes. Not NULL.
  bool literal(Variant& literalValue);

  QList<SqlToken> tokens_;
  qsizetype at_ = 0;
};

}  // namespace kalvor::server
