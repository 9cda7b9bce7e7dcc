#include "server/store/schema_script.h"
#include "server/store/sqlite_statement.h"

namespace kalvor::server {

namespace {

class SqliteConnection : public Connection {
 public:
  SqliteConnection(const QString& fileName, bool readOnly)
      : handle_(std::make_shared<SqliteHandle>(fileName))
  {
    handle_->run("PRAGMA foreign_keys=ON");
    handle_->run("PRAGMA temp_store=MEMORY");
    if (readOnly) {
      handle_->run("PRAGMA query_only=ON");
      // Their first use declares a table, which the authorizer would take for a write.
      handle_->run("SELECT 1 FROM pragma_table_xinfo('x'), pragma_foreign_key_list('x')");
      handle_->allowReadingOnly();
    } else {
      handle_->run("PRAGMA journal_mode=WAL");
      handle_->run("PRAGMA synchronous=FULL");
      handle_->run("PRAGMA cache_size=-32000");
    }
  }

  Dialect dialect() const override { return Dialect::Sqlite; }

  std::shared_ptr<Statement> prepare(const QString& sql, StatementUse use) override
  {
    return std::make_shared<SqliteStatement>(handle_, sql.toUtf8(), use);
  }

  void define(const QString& statement) override { handle_->run(forSqlite(statement).toUtf8().constData()); }

  void begin(bool writing) override
  {
    if (depth_ == 0) {
      handle_->run(writing ? "BEGIN IMMEDIATE" : "BEGIN");
    } else {
      handle_->run(savepoint("SAVEPOINT").constData());
    }
    ++depth_;
  }

  void commit() override
  {
    if (depth_ == 1) {
      handle_->run("COMMIT");
      depth_ = 0;
    } else if (depth_ > 1) {
      --depth_;
      handle_->run(savepoint("RELEASE").constData());
    }
  }

  void rollback() noexcept override
  {
    if (depth_ == 0) {
      return;
    }
    --depth_;
    // A failure such as a full disk may have ended the transaction already.
    if (sqlite3_get_autocommit(handle_->database()) == 0) {
      const QByteArray sql = depth_ == 0 ? QByteArray("ROLLBACK") : savepoint("ROLLBACK TO") + ";" + savepoint("RELEASE");
      sqlite3_exec(handle_->database(), sql.constData(), nullptr, nullptr, nullptr);
    }
  }

  bool inTransaction() const override { return depth_ > 0; }
  qint64 changedRows() const override { return sqlite3_changes64(handle_->database()); }

  QStringList faults() override { return integrityFaults() + brokenReferences(); }

  void setDurable(bool on) override { handle_->run(on ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=NORMAL"); }

 private:
  QByteArray savepoint(const char* verb) const { return QByteArray(verb) + " step_" + QByteArray::number(depth_); }

  QStringList integrityFaults()
  {
    QStringList found;
    SqliteStatement rows(handle_, "PRAGMA integrity_check(20)", StatementUse::Own);
    while (rows.step()) {
      // One row may hold several lines.
      found += rows.text(0).split(u'\n', Qt::SkipEmptyParts);
    }
    found.removeAll(QStringLiteral("ok"));
    return found;
  }

  QStringList brokenReferences()
  {
    QStringList found;
    SqliteStatement rows(handle_, "PRAGMA foreign_key_check", StatementUse::Own);
    while (rows.step() && found.size() < 20) {
      found.append(QStringLiteral("foreign key of %1 to %2: row %3").arg(rows.text(0), rows.text(2), rows.text(1)));
    }
    return found;
  }

  std::shared_ptr<SqliteHandle> handle_;
  int depth_ = 0;
};

}  // namespace

std::unique_ptr<Connection> openSqlite(const QString& fileName, bool readOnly)
{
  return std::make_unique<SqliteConnection>(fileName, readOnly);
}

}  // namespace kalvor::server
