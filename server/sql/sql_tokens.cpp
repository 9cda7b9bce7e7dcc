#include "server/sql/sql_tokens.h"

namespace kalvor::server {

namespace {

// Beyond these a text is no statement of anybody's work, and its tokens would fill the memory.
constexpr qsizetype maxStatementTokens = 100'000;
constexpr qsizetype maxBatchTokens = 1'000'000;

bool startsWord(QChar c) { return c.isLetter() || c == u'_'; }
bool continuesWord(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'$' || c == u'#'; }

// The end of a quoted run whose quote stands at a place, doubled quotes inside; -1 when it is open.
qsizetype endOfQuoted(const QString& sql, qsizetype at)
{
  const QChar quote = sql.at(at);
  for (qsizetype i = at + 1; i < sql.size(); ++i) {
    if (sql.at(i) != quote) {
      continue;
    }
    if (i + 1 < sql.size() && sql.at(i + 1) == quote) {
      ++i;
    } else {
      return i + 1;
    }
  }
  return -1;
}

qsizetype endOfWord(const QString& sql, qsizetype at)
{
  while (at < sql.size() && continuesWord(sql.at(at))) {
    ++at;
  }
  return at;
}

qsizetype endOfNumber(const QString& sql, qsizetype at)
{
  while (at < sql.size() && (sql.at(at).isDigit() || sql.at(at) == u'.')) {
    ++at;
  }
  return at;
}

// The next token; nothing when none of ours begins here.
std::optional<SqlToken> tokenAt(const QString& sql, qsizetype at)
{
  const QChar c = sql.at(at);
  const auto made = [&](TokenKind kind, qsizetype end) { return SqlToken{kind, sql.mid(at, end - at), at, end}; };
  if (c == u'\'' || c == u'"') {
    const qsizetype end = endOfQuoted(sql, at);
    if (end < 0) {
      return {};
    }
    QString text = sql.mid(at + 1, end - at - 2);
    text.replace(QString(2, c), QString(c));
    return SqlToken{c == u'"' ? TokenKind::QuotedName : TokenKind::Text, text, at, end};
  }
  if (startsWord(c)) {
    return made(TokenKind::Word, endOfWord(sql, at));
  }
  if (c >= u'0' && c <= u'9') {
    return made(TokenKind::Number, endOfNumber(sql, at));
  }
  if (c == u':' && at + 1 < sql.size() && startsWord(sql.at(at + 1))) {
    const qsizetype end = endOfWord(sql, at + 1);
    return SqlToken{TokenKind::Parameter, sql.mid(at + 1, end - at - 1), at, end};
  }
  static const QStringList pairs{QStringLiteral("<>"), QStringLiteral("<="), QStringLiteral(">="),
                                 QStringLiteral("||"), QStringLiteral("!=")};
  if (pairs.contains(sql.mid(at, 2))) {
    return made(TokenKind::Symbol, at + 2);
  }
  return QStringLiteral("(),.*=<>+-/%").contains(c) ? std::optional(made(TokenKind::Symbol, at + 1)) : std::nullopt;
}

}  // namespace

std::optional<QList<SqlToken>> tokenizeSql(const QString& sql, SqlText text)
{
  QList<SqlToken> tokens;
  const qsizetype most = text == SqlText::Batch ? maxBatchTokens : maxStatementTokens;
  for (qsizetype at = 0; at < sql.size();) {
    if (tokens.size() >= most) {
      return {};
    }
    const QChar c = sql.at(at);
    if (c == u' ' || c == u'\n' || c == u'\r' || c == u'\t') {
      ++at;
      continue;
    }
    if (c == u';' && text == SqlText::Batch) {
      tokens.append({TokenKind::Symbol, QString(c), at, at + 1});
      ++at;
      continue;
    }
    const QStringView rest = QStringView(sql).mid(at, 2);
    if (rest == u"--" || rest == u"/*") {
      return {};
    }
    auto token = tokenAt(sql, at);
    if (!token) {
      return {};
    }
    at = token->end;
    tokens.append(std::move(*token));
  }
  return tokens;
}

QString quoted(const QString& text) { return u'\'' + QString(text).replace(u'\'', QLatin1StringView("''")) + u'\''; }
QString quotedName(const QString& name) { return u'"' + QString(name).replace(u'"', QLatin1StringView("\"\"")) + u'"'; }

}  // namespace kalvor::server
