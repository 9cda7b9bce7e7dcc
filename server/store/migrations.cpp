#include "server/store/migrations.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>

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

// One column definition, or a table constraint.
QString columnForSqlite(const QString& definition)
{
  static const QRegularExpression column(QStringLiteral(
      "^\\s*(?:ADD\\s+(?:COLUMN\\s+)?)?(?:\"[^\"]+\"|\\w+)\\s+"
      "(?<text>TEXT\\b|VARCHAR\\s*\\(\\s*\\d+\\s*\\))?(?<date>(?:DATE|TIMESTAMP)\\b)?"),
      QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression constraint(QStringLiteral("^\\s*(?:PRIMARY|UNIQUE|CHECK|FOREIGN|CONSTRAINT)\\b"),
                                             QRegularExpression::CaseInsensitiveOption);
  const auto match = column.match(definition);
  if (!match.hasMatch() || constraint.match(definition).hasMatch()) {
    return definition;
  }
  const QString rest = definition.mid(match.capturedEnd(0));
  if (!match.captured(u"date").isEmpty()) {
    return match.captured(0) + QStringLiteral(" TEXT") + rest;
  }
  const bool own = match.captured(u"text").isEmpty() || rest.contains(QStringLiteral("COLLATE"), Qt::CaseInsensitive);
  return own ? definition : match.captured(0) + QStringLiteral(" COLLATE KALVOR") + rest;
}

// The parts between commas outside brackets and quotes.
QStringList splitColumns(const QString& text)
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

QString columnsForSqlite(const QString& columns)
{
  QStringList parts = splitColumns(columns);
  std::transform(parts.begin(), parts.end(), parts.begin(), columnForSqlite);
  return parts.join(u',');
}

}  // namespace

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

QString forSqlite(const QString& statement)
{
  static const QRegularExpression create(QStringLiteral("^CREATE\\s+TABLE\\b[^(]*\\("),
                                         QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression alter(QStringLiteral("^ALTER\\s+TABLE\\s+(?:\"[^\"]+\"|\\w+)\\s+(?=ADD\\b)"),
                                        QRegularExpression::CaseInsensitiveOption);
  if (const auto match = create.match(statement); match.hasMatch()) {
    const qsizetype close = statement.lastIndexOf(u')');
    const qsizetype open = match.capturedEnd(0);
    return statement.left(open) + columnsForSqlite(statement.mid(open, close - open)) + statement.mid(close);
  }
  if (const auto match = alter.match(statement); match.hasMatch()) {
    return match.captured(0) + columnForSqlite(statement.mid(match.capturedEnd(0)));
  }
  return statement;
}

QList<Migration> embeddedMigrations()
{
  QList<Migration> migrations;
  const QDir folder(QStringLiteral(":/schema"));
  for (const QString& name : folder.entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name)) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
      throw StoreError(StoreError::Kind::Other, QStringLiteral("cannot read ") + name);
    }
    migrations.append({name.section(u'_', 0, 0).toInt(), name, QString::fromUtf8(file.readAll())});
  }
  return migrations;
}

int migrate(Connection& connection, const QList<Migration>& migrations)
{
  const bool sqlite = connection.dialect() == Dialect::Sqlite;
  connection.execute(QStringLiteral("CREATE TABLE IF NOT EXISTS srv_Migration (Number INTEGER NOT NULL PRIMARY KEY, "
                                    "Name TEXT NOT NULL, AppliedAt TIMESTAMP NOT NULL)"));
  const Variant last = connection.value(QStringLiteral("SELECT MAX(Number) FROM srv_Migration"));
  const auto newest = std::max_element(migrations.begin(), migrations.end(),
                                       [](const Migration& a, const Migration& b) { return a.number < b.number; });
  if (newest != migrations.end() && !isNull(last) && last.toInt() > newest->number) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("the database is of version %1, this program knows %2")
        .arg(last.toInt()).arg(newest->number));
  }
  int applied = 0;
  for (const Migration& migration : migrations) {
    if (!isNull(connection.value(QStringLiteral("SELECT Number FROM srv_Migration WHERE Number = ?"),
                                 {migration.number}))) {
      continue;
    }
    Transaction transaction(connection);
    for (const QString& statement : splitScript(migration.sql)) {
      connection.execute(sqlite ? forSqlite(statement) : statement);
    }
    connection.execute(QStringLiteral("INSERT INTO srv_Migration (Number, Name, AppliedAt) VALUES (?, ?, ?)"),
                       {migration.number, migration.name, QDateTime::currentDateTime()});
    transaction.commit();
    ++applied;
  }
  return applied;
}

}  // namespace kalvor::server
