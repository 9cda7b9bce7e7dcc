#include "server/sql/fragment.h"

namespace kalvor::server {

namespace {

Fragment joinedConditions(const QList<Fragment>& conditions, const QString& conjunction)
{
  Fragment result;
  for (const Fragment& condition : conditions) {
    if (!condition.isEmpty()) {
      result += (result.isEmpty() ? QStringLiteral("(") : conjunction + u'(') + condition + QStringLiteral(")");
    }
  }
  return result;
}

}  // namespace

Fragment allOf(const QList<Fragment>& conditions) { return joinedConditions(conditions, QStringLiteral(" AND ")); }
Fragment anyOf(const QList<Fragment>& conditions) { return joinedConditions(conditions, QStringLiteral(" OR ")); }

Fragment fragmentOf(const QList<SqlToken>& tokens, qsizetype begin, qsizetype end, const ParameterArray& parameters)
{
  Fragment result;
  for (qsizetype i = begin; i < end; ++i) {
    const SqlToken& token = tokens.at(i);
    if (i > begin && tokens.at(i - 1).end != token.begin) {
      result += QStringLiteral(" ");
    }
    switch (token.kind) {
      case TokenKind::Text: result += quoted(token.text); break;
      case TokenKind::QuotedName: result += quotedName(token.text); break;
      case TokenKind::Parameter: {
        const auto named = std::find_if(parameters.begin(), parameters.end(), [&](const NamedValue& parameter) {
          return parameter.name.compare(token.text, Qt::CaseInsensitive) == 0;
        });
        result += Fragment{QStringLiteral("?"), {named == parameters.end() ? Variant() : named->value}};
        break;
      }
      default: result += token.text;
    }
  }
  return result;
}

}  // namespace kalvor::server
