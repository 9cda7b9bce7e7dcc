#include "server/store/postgres_sql.h"

#include <QRegularExpression>
#include <algorithm>

#include "server/store/schema_script.h"
#include "server/store/stored_type.h"

namespace kalvor::server {

namespace {

struct WordPair {
  const char* word;
  const char* becomes;
};
// Types of CAST(... AS ...).
constexpr WordPair castTypes[] = {
    {"TEXT", "citext"}, {"REAL", "double precision"}, {"INTEGER", "bigint"}, {"BLOB", "bytea"}};
// Words that end the terms of an ORDER BY.
constexpr const char* orderEnds[] = {"LIMIT", "OFFSET", "UNION"};

bool isWordStart(QChar c) { return c.isLetter() || c == u'_'; }
bool isWordPart(QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'$'; }

class Translator {
 public:
  explicit Translator(const QString& sql) : sql_(sql) {}
  PostgresSql run();

 private:
  QString takeQuoted();
  QString takeWord();
  void comment();
  void quotedName();
  void word();
  void symbol();
  void endOrderTerm();
  void collation();
  void alias(const QString& name) { result_.aliases.insert(name.toLower(), name); }

  const QString& sql_;
  qsizetype at_ = 0;
  QString out_;
  PostgresSql result_;
  QString last_;           // the word, name or symbol before, words in upper case
  QList<bool> casts_;      // of the open brackets: whether it is that of a CAST
  qsizetype orderDepth_ = -1;  // brackets around the terms of the order that is being read; -1: none is
  bool descending_ = false;
  bool nullsPlaced_ = false;
};

QString Translator::takeQuoted()
{
  const QChar quote = sql_.at(at_);
  const qsizetype begin = at_++;
  while (at_ < sql_.size()) {
    if (sql_.at(at_++) != quote) {
      continue;
    }
    if (at_ >= sql_.size() || sql_.at(at_) != quote) {
      break;
    }
    ++at_;
  }
  return sql_.mid(begin, at_ - begin);
}

QString Translator::takeWord()
{
  const qsizetype begin = at_;
  while (at_ < sql_.size() && isWordPart(sql_.at(at_))) {
    ++at_;
  }
  return sql_.mid(begin, at_ - begin);
}

void Translator::comment()
{
  const bool line = sql_.at(at_) == u'-';
  const qsizetype end = sql_.indexOf(line ? QStringLiteral("\n") : QStringLiteral("*/"), at_);
  at_ = end < 0 ? sql_.size() : end + (line ? 1 : 2);
  out_ += QStringLiteral(" ");
}

// The name after COLLATE. Texts compare as SQLite's collation does by being citext; the collation alone is their order.
void Translator::collation()
{
  out_.truncate(out_.lastIndexOf(QLatin1StringView("COLLATE"), -1, Qt::CaseInsensitive));
  out_ += QStringLiteral("::citext COLLATE kalvor");
}

void Translator::quotedName()
{
  const QString written = takeQuoted();
  const QString name = written.mid(1, written.size() - 2);
  if (last_ == u"COLLATE" && name.compare(QLatin1StringView("KALVOR"), Qt::CaseInsensitive) == 0) {
    collation();
  } else {
    if (last_ == u"AS") {
      alias(name);
    }
    out_ += written.toLower();
  }
  last_ = written;
}

void Translator::word()
{
  const QString written = takeWord();
  const QString upper = written.toUpper();
  QString text = written;
  if (last_.isEmpty()) {
    result_.reads = upper == u"SELECT" || upper == u"WITH";
  } else if (upper == u"INSERT" || upper == u"UPDATE" || upper == u"DELETE") {
    result_.reads = false;
  }
  if (last_ == u"COLLATE" && upper == u"KALVOR") {
    collation();
    text.clear();
  } else if (last_ == u"AS" && !casts_.isEmpty() && casts_.last()) {
    const auto* type = std::find_if(std::begin(castTypes), std::end(castTypes),
                                    [&](const WordPair& pair) { return upper == QLatin1StringView(pair.word); });
    text = type == std::end(castTypes) ? written : QString::fromLatin1(type->becomes);
  } else if (last_ == u"AS" && upper != u"SELECT" && upper != u"WITH") {
    alias(written);
    // Quoted, so that a word of the language can be a name.
    text = u'"' + written.toLower() + u'"';
  } else if (upper == u"LIKE") {
    text = QStringLiteral("ILIKE");
  } else if (upper == u"BY" && last_ == u"ORDER") {
    orderDepth_ = casts_.size();
    descending_ = nullsPlaced_ = false;
  } else if (orderDepth_ == casts_.size()) {
    descending_ = descending_ || upper == u"DESC";
    nullsPlaced_ = nullsPlaced_ || upper == u"NULLS";
    if (std::any_of(std::begin(orderEnds), std::end(orderEnds),
                    [&](const char* end) { return upper == QLatin1StringView(end); })) {
      endOrderTerm();
      orderDepth_ = -1;
    }
  }
  out_ += text;
  last_ = upper;
}

void Translator::endOrderTerm()
{
  while (out_.endsWith(u' ')) {
    out_.chop(1);
  }
  if (!nullsPlaced_) {
    out_ += QLatin1StringView(descending_ ? " NULLS LAST " : " NULLS FIRST ");
  }
  descending_ = nullsPlaced_ = false;
}

void Translator::symbol()
{
  const QChar c = sql_.at(at_++);
  if (c == u'?') {
    out_ += u'$' + QString::number(++result_.parameters);
  } else if (c == u'(') {
    casts_.append(last_ == u"CAST");
    out_ += c;
  } else if (c == u')') {
    if (orderDepth_ >= 0 && orderDepth_ == casts_.size()) {
      endOrderTerm();
      orderDepth_ = -1;
    }
    if (!casts_.isEmpty()) {
      casts_.removeLast();
    }
    out_ += c;
  } else {
    if (c == u',' && orderDepth_ == casts_.size()) {
      endOrderTerm();
    }
    out_ += c;
  }
  last_ = c;
}

PostgresSql Translator::run()
{
  while (at_ < sql_.size()) {
    const QChar c = sql_.at(at_);
    const QStringView two = QStringView(sql_).mid(at_, 2);
    if (c.isSpace()) {
      ++at_;
      out_ += u' ';
    } else if (two == u"--" || two == u"/*") {
      comment();
    } else if (c == u'\'') {
      out_ += takeQuoted();
      last_ = c;
    } else if (c == u'"') {
      quotedName();
    } else if (isWordStart(c)) {
      word();
    } else {
      symbol();
    }
  }
  if (orderDepth_ >= 0) {
    endOrderTerm();
  }
  result_.text = out_.toUtf8();
  return result_;
}

QString plainName(QString name) { return name.remove(u'"'); }
QString foldedName(const QString& name) { return name.startsWith(u'"') ? name.toLower() : name; }
QString quotedText(const QString& text) { return u'\'' + QString(text).replace(u'\'', QLatin1StringView("''")) + u'\''; }
QString translated(const QString& sql) { return QString::fromUtf8(postgresSql(sql).text); }

QString postgresType(const QString& declared)
{
  switch (parseDeclaredType(declared).type) {
    case StoredType::Integer:
    case StoredType::Boolean:
    case StoredType::Amount: return QStringLiteral("bigint");
    case StoredType::Text: return QStringLiteral("citext COLLATE kalvor");
    case StoredType::Date:
    case StoredType::Timestamp: return QStringLiteral("text COLLATE kalvor");
    case StoredType::Blob: return QStringLiteral("bytea");
    case StoredType::None: break;
  }
  return declared;
}

QString columnForPostgres(const ColumnDefinition& column)
{
  return column.name.isEmpty() ? translated(column.rest)
                               : column.lead + foldedName(column.name) + u' ' + postgresType(column.type) +
                                     translated(column.rest);
}

QStringList tableForPostgres(TableDefinition definition)
{
  definition.head = translated(definition.head);
  QStringList statements{definition.joined(columnForPostgres)};
  const QString table = foldedName(definition.table);
  if (!definition.added) {
    statements.append(QStringLiteral("COMMENT ON TABLE %1 IS %2").arg(table, quotedText(plainName(definition.table))));
  }
  for (const ColumnDefinition& column : std::as_const(definition.columns)) {
    if (!column.name.isEmpty()) {
      statements.append(QStringLiteral("COMMENT ON COLUMN %1.%2 IS %3")
                            .arg(table, foldedName(column.name),
                                 quotedText(plainName(column.name) + u' ' + column.type.simplified())));
    }
  }
  return statements;
}

// Nulls first in both directions, so that the index gives the order that statements ask for.
QString indexForPostgres(const QRegularExpressionMatch& index)
{
  QStringList columns;
  for (const QString& column : splitAtCommas(index.captured(u"columns"))) {
    const bool descending = column.simplified().endsWith(QLatin1StringView(" DESC"), Qt::CaseInsensitive);
    columns.append(foldedName(column.trimmed()) + QLatin1StringView(descending ? " NULLS LAST" : " NULLS FIRST"));
  }
  return translated(index.captured(u"head")) + columns.join(QStringLiteral(", ")) + translated(index.captured(u"tail"));
}

// The columns of a view that are columns of its tables, "Table.Column AS Name", keep their name and declared type.
QStringList viewForPostgres(const QString& statement, const QRegularExpressionMatch& view)
{
  static const QRegularExpression column(QStringLiteral("^\\s*(?<table>\\w+)\\.(?<column>\\w+)\\s+AS\\s+(?<name>\\w+)\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
  const QString name = view.captured(u"name");
  QStringList statements{translated(statement), QStringLiteral("COMMENT ON VIEW %1 IS %2").arg(name, quotedText(name))};
  for (const QString& item : splitAtCommas(view.captured(u"items"))) {
    if (const auto match = column.match(item); match.hasMatch()) {
      statements.append(
          QStringLiteral("DO $body$ DECLARE declared text; BEGIN "
                         "SELECT %1 || ' ' || substr(d, strpos(d, ' ') + 1) INTO declared FROM (SELECT col_description(a.attrelid, "
                         "a.attnum) AS d FROM pg_attribute a WHERE a.attrelid = to_regclass(%2) AND a.attname = lower(%3)) AS c; "
                         "EXECUTE format('COMMENT ON COLUMN %4.%5 IS %L', declared); END $body$")
              .arg(quotedText(match.captured(u"name")), quotedText(match.captured(u"table")),
                   quotedText(match.captured(u"column")), name, match.captured(u"name")));
    }
  }
  return statements;
}

QStringList triggerForPostgres(const QRegularExpressionMatch& trigger)
{
  const QString name = trigger.captured(u"name");
  const QString when = trigger.captured(u"when").trimmed();
  return {QStringLiteral("CREATE FUNCTION %1() RETURNS trigger LANGUAGE plpgsql AS $body$ BEGIN %2 RETURN NULL; END $body$")
              .arg(name, translated(trigger.captured(u"body").trimmed())),
          QStringLiteral("CREATE TRIGGER %1 %2 FOR EACH ROW %3 EXECUTE FUNCTION %1()")
              .arg(name, translated(trigger.captured(u"event").trimmed()),
                   when.isEmpty() ? QString() : QStringLiteral("WHEN (%1)").arg(translated(when)))};
}

}  // namespace

PostgresSql postgresSql(const QString& sql) { return Translator(sql).run(); }

QStringList postgresDefinition(const QString& statement)
{
  constexpr auto options =
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption;
  static const QRegularExpression index(
      QStringLiteral("^(?<head>\\s*CREATE\\s+(?:UNIQUE\\s+)?INDEX\\s+\\S+\\s+ON\\s+[^(]+\\()(?<columns>[^)]*)(?<tail>\\).*)$"),
      options);
  static const QRegularExpression trigger(
      QStringLiteral("^\\s*CREATE\\s+TRIGGER\\s+(?<name>\\w+)\\s+(?<event>(?:AFTER|BEFORE)\\s.*?\\sON\\s+\\S+)\\s+"
                     "(?:WHEN\\s(?<when>.*?)\\s)?BEGIN\\s(?<body>.*)\\sEND\\s*$"),
      options);
  static const QRegularExpression view(
      QStringLiteral("^\\s*CREATE\\s+VIEW\\s+(?<name>\\w+)\\s+AS\\s+SELECT\\s(?<items>.*?)\\sFROM\\s"), options);
  if (const auto definition = tableDefinition(statement)) {
    return tableForPostgres(*definition);
  }
  if (const auto match = view.match(statement); match.hasMatch()) {
    return viewForPostgres(statement, match);
  }
  if (const auto match = index.match(statement); match.hasMatch()) {
    return {indexForPostgres(match)};
  }
  if (const auto match = trigger.match(statement); match.hasMatch()) {
    return triggerForPostgres(match);
  }
  return {translated(statement)};
}

ColumnComment columnComment(const QString& column, const QString& comment)
{
  const QString name = comment.section(u' ', 0, 0);
  return name.compare(column, Qt::CaseInsensitive) == 0 ? ColumnComment{name, comment.section(u' ', 1)}
                                                        : ColumnComment{column, {}};
}

}  // namespace kalvor::server
