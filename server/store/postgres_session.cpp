#include "server/store/postgres_session.h"

#include "server/store/postgres_uri.h"

namespace kalvor::server {

namespace {

constexpr qsizetype keptStatements = 200;

// A writer that waits longer gives up; a transaction whose server fell silent is ended by the database.
constexpr const char* sessionSettings =
    "SET client_encoding = 'UTF8'; SET standard_conforming_strings = on; SET bytea_output = 'hex'; "
    "SET client_min_messages = warning; SET lock_timeout = '10s'; SET idle_in_transaction_session_timeout = '2min'";

void ignoreNotice(void*, const PGresult*) {}

}  // namespace

PostgresSession::PostgresSession(QString uri, ConnectionUse use) : uri_(std::move(uri)), use_(use) { connect(); }

PostgresSession::~PostgresSession() { PQfinish(connection_); }

void PostgresSession::connect()
{
  requirePostgresUri(uri_);
  PQfinish(connection_);
  const QByteArray uri = uri_.toUtf8();
  // The last of a name counts for what the URI does not say; expand_dbname reads the URI in the place of dbname.
  const char* const names[] = {"application_name", "connect_timeout", "dbname", nullptr};
  const char* const values[] = {"kalvor-server", "10", uri.constData(), nullptr};
  connection_ = PQconnectdbParams(names, values, 1);
  ++number_;
  statements_.clear();
  order_.clear();
  tables_.clear();
  if (!connection_ || PQstatus(connection_) != CONNECTION_OK) {
    const QString why = QString::fromUtf8(connection_ ? PQerrorMessage(connection_) : "out of memory").trimmed();
    throw StoreError(StoreError::Kind::Unreachable, why);
  }
  PQsetNoticeReceiver(connection_, ignoreNotice, nullptr);
  run(sessionSettings);
  if (use_ == ConnectionUse::Read) {
    run("SET default_transaction_read_only = on");
  }
  if (!durable_) {
    run("SET synchronous_commit = off");
  }
}

void PostgresSession::requireConnection()
{
  if (!connected() && depth == 0) {
    connect();
  }
}

PostgresResult PostgresSession::checked(PGresult* given, const QString& sql)
{
  PostgresResult result(given);
  const ExecStatusType status = PQresultStatus(given);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_EMPTY_QUERY) {
    failPostgres(connection_, given, sql);
  }
  return result;
}

PostgresResult PostgresSession::run(const QByteArray& statements)
{
  return checked(PQexec(connection_, statements.constData()), QString::fromUtf8(statements));
}

PostgresResult PostgresSession::runAgain(const QByteArray& statements)
{
  requireConnection();
  try {
    return run(statements);
  } catch (const StoreError& error) {
    if (error.kind() != StoreError::Kind::Unreachable) {
      throw;
    }
    connect();
    return run(statements);
  }
}

void PostgresSession::setDurable(bool on)
{
  durable_ = on;
  runAgain(on ? "SET synchronous_commit = on" : "SET synchronous_commit = off");
}

void PostgresSession::forgetTables()
{
  tables_.clear();
  if (!statements_.isEmpty()) {
    run("DEALLOCATE ALL");
  }
  statements_.clear();
  order_.clear();
  // Statements that somebody still holds are prepared again.
  ++number_;
}

const PostgresSession::KnownTable& PostgresSession::table(Oid oid)
{
  if (const auto known = tables_.constFind(oid); known != tables_.constEnd()) {
    return *known;
  }
  const QByteArray id = QByteArray::number(oid);
  const char* const values[] = {id.constData()};
  const QString sql = QStringLiteral(
      "SELECT a.attnum, a.attname, col_description(a.attrelid, a.attnum), c.relname, obj_description(c.oid, 'pg_class') "
      "FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid WHERE c.oid = $1::oid AND a.attnum > 0 AND NOT a.attisdropped");
  const PostgresResult rows =
      checked(PQexecParams(connection_, sql.toUtf8().constData(), 1, nullptr, values, nullptr, nullptr, 0), sql);
  KnownTable known;
  const auto text = [&](int row, int column) { return QString::fromUtf8(PQgetvalue(rows.get(), row, column)); };
  for (int row = 0; row < PQntuples(rows.get()); ++row) {
    const ColumnComment comment = columnComment(text(row, 1), text(row, 2));
    known.columns.insert(text(row, 0).toInt(), {comment.name, parseDeclaredType(comment.type)});
    known.name = text(row, 4).compare(text(row, 3), Qt::CaseInsensitive) == 0 ? text(row, 4) : text(row, 3);
  }
  return *tables_.insert(oid, known);
}

void PostgresSession::describe(PostgresPrepared& statement)
{
  const PostgresResult description =
      checked(PQdescribePrepared(connection_, statement.name.constData()), statement.sql);
  statement.columns.clear();
  for (int i = 0; i < PQnfields(description.get()); ++i) {
    PostgresColumn column;
    const QString given = QString::fromUtf8(PQfname(description.get(), i));
    const QString alias = statement.translated.aliases.value(given);
    column.name = alias.isEmpty() ? given : alias.section(u':', 0, 0);
    column.type = PQftype(description.get(), i);
    const Oid origin = PQftable(description.get(), i);
    if (origin != InvalidOid) {
      const KnownTable& known = table(origin);
      const auto [name, declared] = known.columns.value(PQftablecol(description.get(), i));
      column.origin = name.isEmpty() ? QString() : known.name + u'.' + name;
      column.declared = declared;
      if (alias.isEmpty() && !name.isEmpty()) {
        column.name = name;
      }
    }
    if (alias.contains(u':')) {
      column.declared = parseDeclaredType(alias.section(u':', 1));
    }
    statement.columns.append(column);
  }
}

void PostgresSession::prepareOnServer(PostgresPrepared& statement)
{
  statement.name = "kalvor_" + QByteArray::number(++statementNumber_);
  checked(PQprepare(connection_, statement.name.constData(), statement.translated.text.constData(), 0, nullptr),
          statement.sql);
  statement.connection = number_;
  describe(statement);
}

void PostgresSession::evict()
{
  while (order_.size() >= keptStatements) {
    const PostgresPreparedPtr oldest = statements_.take(order_.takeFirst());
    // One that is still held stays on the server until the connection ends.
    if (oldest.use_count() == 1) {
      const QByteArray forget = "DEALLOCATE " + oldest->name;
      PQclear(PQexec(connection_, forget.constData()));
    }
  }
}

PostgresPreparedPtr PostgresSession::prepare(const QString& sql)
{
  requireConnection();
  if (const PostgresPreparedPtr known = statements_.value(sql)) {
    order_.removeOne(sql);
    order_.append(sql);
    return known;
  }
  const auto statement = std::make_shared<PostgresPrepared>();
  statement->sql = sql;
  statement->translated = postgresSql(sql);
  try {
    prepareOnServer(*statement);
  } catch (const StoreError& error) {
    // A connection that died while nobody used it shows only now.
    if (error.kind() != StoreError::Kind::Unreachable || depth > 0) {
      throw;
    }
    connect();
    prepareOnServer(*statement);
  }
  evict();
  statements_.insert(sql, statement);
  order_.append(sql);
  return statement;
}

PostgresResult PostgresSession::execute(PostgresPreparedPtr& statement, const std::vector<PostgresValue>& values)
{
  std::vector<const char*> pointers;
  std::vector<int> lengths;
  std::vector<int> formats;
  for (const PostgresValue& value : values) {
    pointers.push_back(value.isNull ? nullptr : value.bytes.constData());
    lengths.push_back(int(value.bytes.size()));
    formats.push_back(value.binary ? 1 : 0);
  }
  const auto once = [&] {
    if (statement->connection != number_) {
      statement = prepare(statement->sql);
    }
    return checked(PQexecPrepared(connection_, statement->name.constData(), int(values.size()), pointers.data(),
                                  lengths.data(), formats.data(), 0),
                   statement->sql);
  };
  requireConnection();
  PostgresResult result;
  try {
    result = once();
  } catch (const StoreError& error) {
    if (error.kind() != StoreError::Kind::Unreachable || depth > 0 || !statement->translated.reads) {
      throw;
    }
    connect();
    result = once();
  }
  changedRows = QByteArray(PQcmdTuples(result.get())).toLongLong();
  return result;
}

}  // namespace kalvor::server
