// Statements with parameters $1, $2 ... on SQLite or libpq directly: prepared once a connection, every value read.
#pragma once

#include <libpq-fe.h>

#include <map>
#include <memory>

#include "bare_database.h"
#include "server/store/database.h"

namespace kalvor::bench {

class BareClient {
 public:
  virtual ~BareClient() = default;
  virtual void run(const char* sql, const std::vector<QByteArray>& values = {}) = 0;
  static std::unique_ptr<BareClient> open(const QString& database);
};

class BareSqliteClient : public BareClient {
 public:
  explicit BareSqliteClient(const QString& file) : database_(file) {}
  ~BareSqliteClient() override
  {
    for (const auto& [sql, statement] : statements_) {
      sqlite3_finalize(statement);
    }
  }
  void run(const char* sql, const std::vector<QByteArray>& values) override
  {
    sqlite3_stmt*& statement = statements_[sql];
    if (!statement) {
      statement = database_.prepare(qstrcmp(sql, "BEGIN") == 0 ? "BEGIN IMMEDIATE" : sql);
    }
    for (size_t i = 0; i < values.size(); ++i) {
      sqlite3_bind_text(statement, int(i + 1), values[i].constData(), int(values[i].size()), SQLITE_STATIC);
    }
    int code = sqlite3_step(statement);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        sqlite3_column_text(statement, i);
      }
    }
    sqlite3_reset(statement);
    if (code != SQLITE_DONE) {
      throw DataError(QStringLiteral("%1: %2").arg(code).arg(QString::fromUtf8(sql)));
    }
  }

 private:
  BareDatabase database_;
  std::map<std::string, sqlite3_stmt*> statements_;
};

class BarePostgresClient : public BareClient {
 public:
  explicit BarePostgresClient(const QString& uri) : connection_(PQconnectdb(uri.toUtf8().constData()))
  {
    check(PQexec(connection_, "SET client_min_messages = warning"));
  }
  ~BarePostgresClient() override { PQfinish(connection_); }
  void run(const char* sql, const std::vector<QByteArray>& values) override
  {
    QByteArray& name = names_[sql];
    if (name.isEmpty()) {
      name = "s" + QByteArray::number(int(names_.size()));
      check(PQprepare(connection_, name.constData(), sql, 0, nullptr));
    }
    std::vector<const char*> pointers;
    for (const QByteArray& value : values) {
      pointers.push_back(value.constData());
    }
    check(PQexecPrepared(connection_, name.constData(), int(values.size()), pointers.data(), nullptr, nullptr, 0));
  }

 private:
  void check(PGresult* result)
  {
    qint64 bytes = 0;
    for (int row = 0; row < PQntuples(result); ++row) {
      for (int i = 0; i < PQnfields(result); ++i) {
        bytes += PQgetlength(result, row, i);
      }
    }
    const ExecStatusType status = PQresultStatus(result);
    PQclear(result);
    if (bytes < 0 || (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)) {
      throw DataError(QString::fromUtf8(PQerrorMessage(connection_)));
    }
  }

  PGconn* connection_;
  std::map<std::string, QByteArray> names_;
};

inline std::unique_ptr<BareClient> BareClient::open(const QString& database)
{
  if (server::isPostgresUri(database)) {
    return std::make_unique<BarePostgresClient>(database);
  }
  return std::make_unique<BareSqliteClient>(database);
}

}  // namespace kalvor::bench
