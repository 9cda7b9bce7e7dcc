// SQL text cut into tokens: for stored queries, which an administrator writes, and for the few statements that a
// client sends as text.
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "layer_export.h"

namespace kalvor::server {

enum class TokenKind : quint8 { Word, QuotedName, Text, Number, Parameter, Symbol };

struct SqlToken {
  TokenKind kind = TokenKind::Symbol;
  QString text;           // Word, Number, Symbol as written; QuotedName, Text, Parameter without their marks
  qsizetype begin = 0;    // in the source
  qsizetype end = 0;

  bool isWord(const char* word) const
  {
    return kind == TokenKind::Word && text.compare(QLatin1StringView(word), Qt::CaseInsensitive) == 0;
  }
  bool isSymbol(const char* symbol) const { return kind == TokenKind::Symbol && text == QLatin1StringView(symbol); }
  bool isName() const { return kind == TokenKind::Word || kind == TokenKind::QuotedName; }
};

// One statement, or several with semicolons between them, which are symbols then.
enum class SqlText : quint8 { Statement, Batch };

// Nothing when the text holds what SQL of ours never does: an open quote or comment, a control character, a semicolon
// in a single statement, more tokens than anybody writes.
KALVOR_SERVER std::optional<QList<SqlToken>> tokenizeSql(const QString& sql, SqlText text = SqlText::Statement);

// 'text' with its inner quotes doubled.
KALVOR_SERVER QString quoted(const QString& text);
// "Name": a name of our own catalogue inside a statement.
KALVOR_SERVER QString quotedName(const QString& name);

}  // namespace kalvor::server
