#include "server/client_sql/statement_template.h"

#include <QRegularExpression>

namespace kalvor::server {

namespace {

// Notes what a place holder stands for; false when it stood for something else before.
bool capture(QHash<QString, QString>& values, const QString& name, const QString& value)
{
  if (const auto known = values.constFind(name); known != values.constEnd()) {
    return *known == value;
  }
  values.insert(name, value);
  return true;
}

bool sameToken(const SqlToken& wanted, const SqlToken& token)
{
  return wanted.kind == token.kind && wanted.text.compare(token.text, Qt::CaseInsensitive) == 0;
}

}  // namespace

std::optional<QHash<QString, QString>> matchTemplate(const QString& statement, const char* pattern)
{
  const auto tokens = tokenizeSql(statement);
  const auto wanted = tokenizeSql(QString::fromLatin1(pattern));
  if (!tokens || !wanted) {
    return {};
  }
  QHash<QString, QString> values;
  qsizetype at = 0;
  for (qsizetype i = 0; i < wanted->size(); ++i, ++at) {
    if (at >= tokens->size()) {
      return {};
    }
    const SqlToken& token = tokens->at(at);
    const SqlToken& expected = wanted->at(i);
    if (expected.kind == TokenKind::Parameter) {
      if (token.kind != TokenKind::Text || !capture(values, expected.text, token.text)) {
        return {};
      }
    } else if (expected.isSymbol("<") && i + 2 < wanted->size() && wanted->at(i + 2).isSymbol(">")) {
      if (!token.isName() || !capture(values, wanted->at(i + 1).text, token.text)) {
        return {};
      }
      i += 2;
    } else if (!sameToken(expected, token)) {
      return {};
    }
  }
  return at == tokens->size() ? std::optional(values) : std::nullopt;
}

QString withoutValues(const QString& statement)
{
  static const QRegularExpression text(QStringLiteral("'[^']*('|$)"));
  static const QRegularExpression dollarText(QStringLiteral("\\$(\\w*)\\$.*?(\\$\\1\\$|$)"),
                                             QRegularExpression::DotMatchesEverythingOption);
  static const QRegularExpression name(QStringLiteral("\"(?!\\w{1,64}\")[^\"]*(\"|$)"),
                                       QRegularExpression::UseUnicodePropertiesOption);
  static const QRegularExpression number(QStringLiteral("(?<![\\w.])\\d+(\\.\\d+)?(?!\\w)"),
                                         QRegularExpression::UseUnicodePropertiesOption);
  return statement.left(2000)
      .replace(text, QStringLiteral("'?'"))
      .replace(dollarText, QStringLiteral("'?'"))
      .replace(name, QStringLiteral("\"?\""))
      .replace(number, QStringLiteral("?"))
      .left(300);
}

}  // namespace kalvor::server
