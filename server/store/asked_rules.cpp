#include "server/store/asked_rules.h"

#include <QString>
#include <algorithm>
#include <iterator>

namespace kalvor::server {

namespace {

bool sameName(QStringView name, const char* other)
{
  return name.compare(QLatin1StringView(other), Qt::CaseInsensitive) == 0;
}

template <size_t count>
bool isOneOf(QStringView name, const char* const (&names)[count])
{
  return std::any_of(std::begin(names), std::end(names), [&](const char* one) { return sameName(name, one); });
}

struct SecretColumn {
  const char* table;
  const char* column;
};
constexpr SecretColumn secretColumns[] = {{"N_Users", "PasswordHash"}};

constexpr const char* plainFunctions[] = {
    "abs", "avg", "ceil", "ceiling", "char", "coalesce", "concat", "count", "date", "datetime", "dense_rank", "exp",
    "first_value", "floor", "glob", "greatest", "group_concat", "hex", "ifnull", "iif", "instr", "julianday", "lag",
    "last_value", "lead", "least", "length", "like", "ln", "lower", "ltrim", "max", "min", "mod", "nullif", "position",
    "power", "printf", "format", "rank", "replace", "round", "row_number", "rtrim", "sign", "sqrt", "strftime",
    "string_agg", "strpos", "substr", "substring", "sum", "time", "to_char", "total", "trim", "trunc", "typeof",
    "unicode", "upper",
};

// Words that a bracket may follow without being called.
constexpr const char* bracketWords[] = {
    "all", "and", "any", "as", "between", "by", "case", "cast", "decimal", "distinct", "else", "escape", "except", "exists",
    "filter", "from", "having", "in", "intersect", "join", "like", "limit", "not", "numeric", "on", "or", "over", "select",
    "some", "then", "union", "using", "values", "varchar", "when", "where",
};

// Names that the server itself gives in the statements that it makes.
bool isOwnAlias(QStringView name)
{
  return sameName(name, "srv_rows") || name.startsWith(QLatin1StringView("srv_order"), Qt::CaseInsensitive);
}

bool isSecretName(QStringView name)
{
  return (isServerTable(name) && !isOwnAlias(name)) || sameName(name, "information_schema") ||
         std::any_of(std::begin(secretColumns), std::end(secretColumns),
                     [&](const SecretColumn& secret) { return sameName(name, secret.column); });
}

bool isWordStart(QChar c) { return c.isLetter() || c == u'_'; }
bool isWordPart(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'$'; }

// The place behind a run in quotes, doubled quotes inside.
qsizetype behindQuotes(QStringView sql, qsizetype at)
{
  const QChar quote = sql.at(at++);
  while (at < sql.size()) {
    if (sql.at(at++) != quote) {
      continue;
    }
    if (at >= sql.size() || sql.at(at) != quote) {
      break;
    }
    ++at;
  }
  return at;
}

bool isCalled(QStringView sql, qsizetype at)
{
  while (at < sql.size() && sql.at(at).isSpace()) {
    ++at;
  }
  return at < sql.size() && sql.at(at) == u'(';
}

}  // namespace

bool isServerTable(QStringView name)
{
  static constexpr const char* prefixes[] = {"srv_", "sqlite_", "pg_", "pragma_"};
  return std::any_of(std::begin(prefixes), std::end(prefixes), [&](const char* prefix) {
    return name.startsWith(QLatin1StringView(prefix), Qt::CaseInsensitive);
  });
}

bool isSecretColumn(QStringView table, QStringView column)
{
  return std::any_of(std::begin(secretColumns), std::end(secretColumns), [&](const SecretColumn& secret) {
    return sameName(table, secret.table) && sameName(column, secret.column);
  });
}

bool isPlainFunction(QStringView name) { return isOneOf(name, plainFunctions); }

QString refusedWord(const QString& text)
{
  const QStringView sql(text);
  if (const QString first = text.trimmed().section(u' ', 0, 0); !sameName(first, "SELECT")) {
    return first;
  }
  for (qsizetype at = 0; at < sql.size();) {
    const QChar c = sql.at(at);
    if (c == u'\'') {
      at = behindQuotes(sql, at);
      continue;
    }
    // Comments, further statements, dollar quotes: nothing that the server writes.
    const QStringView two = sql.mid(at, 2);
    if (c == u';' || c == u'$' || c == u'\\' || two == u"--" || two == u"/*") {
      return sql.mid(at, 2).toString();
    }
    if (c != u'"' && !isWordStart(c)) {
      ++at;
      continue;
    }
    const qsizetype begin = at;
    if (c == u'"') {
      at = behindQuotes(sql, at);
    } else {
      while (at < sql.size() && isWordPart(sql.at(at))) {
        ++at;
      }
    }
    const bool inQuotes = c == u'"';
    const QStringView name = inQuotes ? sql.mid(begin + 1, qMax<qsizetype>(0, at - begin - 2)) : sql.mid(begin, at - begin);
    const bool called = isCalled(sql, at) && (inQuotes || !isOneOf(name, bracketWords));
    if (isSecretName(name) || (called && !isPlainFunction(name))) {
      return name.toString();
    }
    // U&"..." and E'...' hide characters of names and texts.
    if (!inQuotes && at < sql.size() && (sql.at(at) == u'\'' || (sql.at(at) == u'&' && sameName(name, "U")))) {
      return name.toString();
    }
  }
  return {};
}

}  // namespace kalvor::server
