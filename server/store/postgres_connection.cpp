#include "server/store/postgres_statement.h"

namespace kalvor::server {

namespace {

// Keys of the locks that make writing transactions follow one another, in all servers of a database.
constexpr qint64 companyLock = 0x6B616C766F72;
constexpr qint64 stateLock = companyLock + 1;

class PostgresConnection : public Connection {
 public:
  PostgresConnection(const QString& uri, ConnectionUse use) : session_(std::make_shared<PostgresSession>(uri, use)) {}

  Dialect dialect() const override { return Dialect::PostgreSql; }

  std::shared_ptr<Statement> prepare(const QString& sql, StatementUse use) override
  {
    return std::make_shared<PostgresStatement>(session_, sql, use);
  }

  void define(const QString& statement) override
  {
    const QByteArray statements = postgresDefinition(statement).join(u';').toUtf8();
    session_->depth > 0 ? session_->run(statements) : session_->runAgain(statements);
    session_->forgetTables();
  }

  void begin(bool writing) override
  {
    if (session_->depth > 0) {
      session_->run(savepoint("SAVEPOINT", session_->depth));
    } else {
      beginOutermost(writing);
      writing_ = writing;
    }
    ++session_->depth;
  }

  void commit() override
  {
    if (session_->depth > 1) {
      session_->run(savepoint("RELEASE", session_->depth - 1));
      --session_->depth;
    } else if (session_->depth == 1) {
      const PostgresResult result = commitOutermost();
      session_->depth = 0;
      // After an error that somebody passed over, PostgreSQL answers COMMIT by rolling back.
      if (qstrcmp(PQcmdStatus(result.get()), "COMMIT") != 0) {
        throw StoreError(StoreError::Kind::Other, QStringLiteral("the transaction was rolled back instead of committed"));
      }
    }
  }

  void rollback() noexcept override
  {
    if (session_->depth == 0) {
      return;
    }
    const int depth = --session_->depth;
    if (!session_->connected() || !session_->transactionOpen()) {
      return;
    }
    try {
      session_->run(depth == 0 ? QByteArray("ROLLBACK")
                               : savepoint("ROLLBACK TO", depth) + ";" + savepoint("RELEASE", depth));
    } catch (const StoreError&) {
      // The connection is gone, and with it the transaction.
    }
  }

  bool inTransaction() const override { return session_->depth > 0; }
  qint64 changedRows() const override { return session_->changedRows; }
  void setDurable(bool on) override { session_->setDurable(on); }
  QStringList faults() override;

 private:
  static QByteArray savepoint(const char* verb, int depth) { return QByteArray(verb) + " step_" + QByteArray::number(depth); }

  PostgresResult commitOutermost()
  {
    try {
      return session_->run("COMMIT");
    } catch (const StoreError& error) {
      if (error.kind() == StoreError::Kind::Unreachable && writing_) {
        throw StoreError(StoreError::Kind::Unsettled, QString::fromUtf8(error.what()));
      }
      throw;
    }
  }

  void beginOutermost(bool writing)
  {
    if (!writing) {
      session_->runAgain("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
      return;
    }
    // Each statement sees what was committed before it, so that whoever waited for the lock reads the newest state.
    const qint64 lock = session_->use() == ConnectionUse::State ? stateLock : companyLock;
    try {
      session_->runAgain("BEGIN ISOLATION LEVEL READ COMMITTED");
      session_->run("SELECT pg_advisory_xact_lock(" + QByteArray::number(lock) + ")");
    } catch (const StoreError&) {
      if (session_->connected() && session_->transactionOpen()) {
        session_->run("ROLLBACK");
      }
      throw;
    }
  }

  std::shared_ptr<PostgresSession> session_;
  bool writing_ = false;
};

QStringList PostgresConnection::faults()
{
  QStringList found;
  auto rows = prepare(QStringLiteral(
      "SELECT 'invalid index ' || c.relname FROM pg_index i JOIN pg_class c ON c.oid = i.indexrelid "
      "WHERE NOT i.indisvalid OR NOT i.indisready "
      "UNION ALL SELECT 'constraint not validated ' || conname FROM pg_constraint WHERE NOT convalidated "
      "UNION ALL SELECT 'pages with a wrong checksum: ' || CAST(checksum_failures AS TEXT) FROM pg_stat_database "
      "WHERE datname = current_database() AND checksum_failures > 0"), StatementUse::Own);
  while (rows->step()) {
    found.append(rows->text(0));
  }
  return found;
}

}  // namespace

std::unique_ptr<Connection> openPostgres(const QString& uri, ConnectionUse use)
{
  return std::make_unique<PostgresConnection>(uri, use);
}

}  // namespace kalvor::server
