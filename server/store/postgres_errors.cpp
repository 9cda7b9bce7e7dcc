#include <QRegularExpression>

#include "server/store/postgres_session.h"

namespace kalvor::server {

namespace {

using Kind = StoreError::Kind;
using Rule = StoreError::Rule;

struct StateMeaning {
  const char* state;  // the first characters of an SQLSTATE
  Kind kind;
  Rule rule = Rule::None;
};
// The first that fits counts.
constexpr StateMeaning meanings[] = {
    {"23502", Kind::Constraint, Rule::Required}, {"23503", Kind::Constraint, Rule::Reference},
    {"23505", Kind::Constraint, Rule::Unique},   {"23", Kind::Constraint},
    {"22", Kind::Constraint},  // values that the column's type does not take
    {"40001", Kind::Collision},                  {"40P01", Kind::Collision},
    {"55P03", Kind::Busy},                       {"57014", Kind::Busy},
    {"53100", Kind::DiskFull},                   {"53", Kind::Busy},
    {"XX001", Kind::Corrupt},                    {"XX002", Kind::Corrupt},
    {"08", Kind::Unreachable},                   {"57P", Kind::Unreachable},
    {"25P03", Kind::Unreachable},                {"25006", Kind::Denied},
    {"42501", Kind::Denied},
};

QString diagnostic(const PGresult* result, int field) { return QString::fromUtf8(PQresultErrorField(result, field)); }

// A folded name as the statement writes it.
QString asWritten(const QString& column, const QString& sql)
{
  const QRegularExpression word(QStringLiteral("\\b%1\\b").arg(QRegularExpression::escape(column)),
                                QRegularExpression::CaseInsensitiveOption);
  const auto match = word.match(sql);
  return match.hasMatch() ? match.captured(0) : column;
}

// "Key (comp_id, documentno)=(5, 12) already exists.", in whatever language: comp_id and documentno.
QStringList namedColumns(const PGresult* result, Rule rule, const QString& sql)
{
  static const QRegularExpression key(QStringLiteral("\\(([^()]*)\\)=\\("));
  QStringList columns;
  if (rule == Rule::Required) {
    columns.append(diagnostic(result, PG_DIAG_COLUMN_NAME));
  } else if (rule == Rule::Unique) {
    columns = key.match(diagnostic(result, PG_DIAG_MESSAGE_DETAIL)).captured(1).split(u',', Qt::SkipEmptyParts);
  }
  for (QString& column : columns) {
    column = asWritten(column.trimmed().remove(u'"'), sql);
  }
  return columns;
}

}  // namespace

void failPostgres(const PGconn* connection, const PGresult* result, const QString& sql)
{
  const QString state = result ? diagnostic(result, PG_DIAG_SQLSTATE) : QString();
  // The details repeat a record's values, which have no place in a log.
  const QString primary = result ? diagnostic(result, PG_DIAG_MESSAGE_PRIMARY) : QString();
  const QString message = QStringLiteral("%1 (%2) in: %3")
      .arg(primary.isEmpty() ? QString::fromUtf8(PQerrorMessage(connection)).trimmed() : primary, state, sql.left(2000));
  if (PQstatus(connection) != CONNECTION_OK) {
    throw StoreError(Kind::Unreachable, message);
  }
  for (const StateMeaning& meaning : meanings) {
    if (state.startsWith(QLatin1StringView(meaning.state))) {
      throw StoreError(meaning.kind, message, meaning.rule, result ? namedColumns(result, meaning.rule, sql) : QStringList());
    }
  }
  throw StoreError(Kind::Other, message);
}

}  // namespace kalvor::server
