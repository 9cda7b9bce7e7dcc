#include "server/store/schema_script.h"

#include <QRegularExpression>

#include "server/store/stored_type.h"

namespace kalvor::server {

namespace {

// The end of what begins at a place: a quoted text or name, a comment; else the place itself.
qsizetype endOfQuotedOrComment(const QString& script, qsizetype at)
{
  const QChar c = script.at(at);
  if (c == u'\'' || c == u'"') {
    const qsizetype close = script.indexOf(c, at + 1);
    return close < 0 ? script.size() : close + 1;
  }
  const QStringView rest = QStringView(script).mid(at);
  if (rest.startsWith(u"--")) {
    const qsizetype line = script.indexOf(u'\n', at);
    return line < 0 ? script.size() : line;
  }
  if (rest.startsWith(u"/*")) {
    const qsizetype close = script.indexOf(u"*/", at + 2);
    return close < 0 ? script.size() : close + 2;
  }
  return at;
}

ColumnDefinition columnDefinition(const QString& definition)
{
  static const QRegularExpression column(
      QStringLiteral("^(?<lead>\\s*(?:ADD\\s+(?:COLUMN\\s+)?)?)(?<name>\"[^\"]+\"|\\w+)\\s+"
                     "(?<type>[A-Z]+(?:\\s*\\(\\s*\\d+\\s*\\))?)(?<rest>.*)$"),
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
  static const QRegularExpression constraint(QStringLiteral("^\\s*(?:PRIMARY|UNIQUE|CHECK|FOREIGN|CONSTRAINT)\\b"),
                                             QRegularExpression::CaseInsensitiveOption);
  const auto match = column.match(definition);
  if (!match.hasMatch() || constraint.match(definition).hasMatch()) {
    return {{}, {}, {}, definition};
  }
  return {match.captured(u"lead"), match.captured(u"name"), match.captured(u"type"), match.captured(u"rest")};
}

QString columnForSqlite(const ColumnDefinition& column)
{
  if (column.name.isEmpty()) {
    return column.rest;
  }
  QString type = column.type;
  switch (parseDeclaredType(type).type) {
    case StoredType::Date:
    case StoredType::Timestamp: type += QStringLiteral(" TEXT"); break;
    case StoredType::Text: type += QStringLiteral(" COLLATE KALVOR"); break;
    default: break;
  }
  return column.lead + column.name + u' ' + type + column.rest;
}

}  // namespace

QStringList splitAtCommas(const QString& text)
{
  QStringList parts;
  qsizetype begin = 0;
  int depth = 0;
  for (qsizetype at = 0; at < text.size();) {
    const qsizetype end = endOfQuotedOrComment(text, at);
    if (end > at) {
      at = end;
      continue;
    }
    const QChar c = text.at(at);
    depth += c == u'(' ? 1 : c == u')' ? -1 : 0;
    if (c == u',' && depth == 0) {
      parts.append(text.mid(begin, at - begin));
      begin = at + 1;
    }
    ++at;
  }
  parts.append(text.mid(begin));
  return parts;
}

QStringList splitScript(const QString& script)
{
  // The statements of a trigger are part of it.
  static const QRegularExpression openTrigger(QStringLiteral("^\\s*CREATE\\s+TRIGGER\\b(?!.*\\bEND\\s*$)"),
                                              QRegularExpression::CaseInsensitiveOption |
                                                  QRegularExpression::DotMatchesEverythingOption);
  QStringList statements;
  QString current;
  const auto finish = [&] {
    if (!current.trimmed().isEmpty()) {
      statements.append(current.trimmed());
    }
    current.clear();
  };
  for (qsizetype at = 0; at < script.size();) {
    const qsizetype end = endOfQuotedOrComment(script, at);
    if (end > at) {
      const QChar c = script.at(at);
      current += c == u'\'' || c == u'"' ? script.mid(at, end - at) : QStringLiteral(" ");
      at = end;
    } else if (script.at(at) == u';' && !openTrigger.match(current).hasMatch()) {
      finish();
      ++at;
    } else {
      current += script.at(at++);
    }
  }
  finish();
  return statements;
}

std::optional<TableDefinition> tableDefinition(const QString& statement)
{
  static const QRegularExpression create(
      QStringLiteral("^\\s*CREATE\\s+TABLE\\s+(?:IF\\s+NOT\\s+EXISTS\\s+)?(?<table>\"[^\"]+\"|\\w+)\\s*\\("),
      QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression alter(
      QStringLiteral("^\\s*ALTER\\s+TABLE\\s+(?<table>\"[^\"]+\"|\\w+)\\s+(?=ADD\\b)"),
      QRegularExpression::CaseInsensitiveOption);
  TableDefinition definition;
  QStringList columns;
  if (const auto match = create.match(statement); match.hasMatch()) {
    const qsizetype open = match.capturedEnd(0);
    const qsizetype close = statement.lastIndexOf(u')');
    definition = {match.captured(u"table"), false, match.captured(0), {}, statement.mid(close)};
    columns = splitAtCommas(statement.mid(open, close - open));
  } else if (const auto added = alter.match(statement); added.hasMatch()) {
    definition = {added.captured(u"table"), true, added.captured(0), {}, {}};
    columns = {statement.mid(added.capturedEnd(0))};
  } else {
    return {};
  }
  for (const QString& column : std::as_const(columns)) {
    definition.columns.append(columnDefinition(column));
  }
  return definition;
}

QString TableDefinition::joined(QString (*column)(const ColumnDefinition&)) const
{
  QStringList parts;
  for (const ColumnDefinition& definition : columns) {
    parts.append(column(definition));
  }
  return head + parts.join(u',') + tail;
}

QString forSqlite(const QString& statement)
{
  const auto definition = tableDefinition(statement);
  return definition ? definition->joined(columnForSqlite) : statement;
}

}  // namespace kalvor::server
