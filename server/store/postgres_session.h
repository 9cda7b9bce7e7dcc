// One connection to PostgreSQL with its prepared statements and what it knows of tables. Known inside server/store only.
#pragma once

#include <libpq-fe.h>

#include <QHash>
#include <memory>
#include <vector>

#include "server/store/connection.h"
#include "server/store/postgres_sql.h"
#include "server/store/stored_type.h"

namespace kalvor::server {

struct PostgresResultDeleter {
  void operator()(PGresult* result) const { PQclear(result); }
};
using PostgresResult = std::unique_ptr<PGresult, PostgresResultDeleter>;

struct PostgresColumn {
  QString name;          // as declared or as written after AS
  QString origin;        // Table.Column; empty: an expression
  DeclaredType declared;
  Oid type = 0;          // of an expression without a declaration
};

// A statement that the connection has prepared.
struct PostgresPrepared {
  QString sql;      // as it was asked for
  StatementUse use = StatementUse::Own;
  PostgresSql translated;
  QByteArray name;
  quint64 connection = 0;  // the number of the connection that knows the name
  QList<PostgresColumn> columns;
};
using PostgresPreparedPtr = std::shared_ptr<PostgresPrepared>;

// Values of a statement in PostgreSQL's text form, blobs in binary.
struct PostgresValue {
  QByteArray bytes;
  bool isNull = true;
  bool binary = false;
};

class PostgresSession {
 public:
  PostgresSession(QString uri, ConnectionUse use);
  ~PostgresSession();
  PostgresSession(const PostgresSession&) = delete;
  PostgresSession& operator=(const PostgresSession&) = delete;

  ConnectionUse use() const { return use_; }
  // Statements without parameters and rows, several with ";" between. Throws StoreError like all that follow.
  PostgresResult run(const QByteArray& statements);
  // The same, on a new connection when the one there was is lost. Outside a transaction, for what does no harm twice.
  PostgresResult runAgain(const QByteArray& statements);
  PostgresPreparedPtr prepare(const QString& sql, StatementUse use);
  // Prepares it once more when the connection is another one by now.
  PostgresResult execute(PostgresPreparedPtr& statement, const std::vector<PostgresValue>& values);
  const QByteArray& readerRole() const { return readerRole_; }  // quoted; empty: there is none
  void forgetTables();
  void setDurable(bool on);

  int depth = 0;  // of transactions; only outside them a lost connection is made anew
  qint64 changedRows = 0;
  bool connected() const { return PQstatus(connection_) == CONNECTION_OK; }
  bool transactionOpen() const { return PQtransactionStatus(connection_) != PQTRANS_IDLE; }

 private:
  struct KnownTable {
    QString name;
    QHash<int, std::pair<QString, DeclaredType>> columns;  // by number
  };

  void connect();
  void findReaderRole();
  void requireConnection();
  PostgresResult executeOnce(PostgresPreparedPtr& statement, const std::vector<PostgresValue>& values);
  PostgresResult executeAsked(PostgresPreparedPtr& statement, const std::vector<PostgresValue>& values);
  void prepareOnServer(PostgresPrepared& statement);
  void describe(PostgresPrepared& statement, const PGresult* description);
  const KnownTable& table(Oid oid);
  void evict();
  PostgresResult checked(PGresult* result, const QString& sql);

  QString uri_;
  ConnectionUse use_;
  bool durable_ = true;
  QByteArray readerRole_;
  PGconn* connection_ = nullptr;
  quint64 number_ = 0;         // of the connection; grows with every new one
  quint64 statementNumber_ = 0;
  QHash<QString, PostgresPreparedPtr> statements_;
  QStringList order_;          // of statements_, the longest unused first
  QHash<Oid, KnownTable> tables_;
};

// What a failed result says; sql stands in the message for the log.
[[noreturn]] void failPostgres(const PGconn* connection, const PGresult* result, const QString& sql);

}  // namespace kalvor::server
