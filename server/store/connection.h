// The thin layer over the database, SQLite in a file or PostgreSQL: prepared, parameterised statements, transactions,
// nothing else. Nobody but server/store names a database library, and every statement is one text for both.
#pragma once

#include <QStringList>
#include <functional>
#include <memory>
#include <stdexcept>

#include "data/record_set.h"

namespace kalvor::server {

enum class Dialect : quint8 { Sqlite, PostgreSql };

// A failed statement; the message is for the log, never for a client.
class KALVOR_SERVER StoreError : public std::runtime_error {
 public:
  // Collision: the database ended the transaction in favour of another one; the same again may succeed.
  // Unreachable: the connection to the database is lost; the next call tries to connect again.
  enum class Kind : quint8 { Other, Busy, Constraint, DiskFull, Corrupt, Collision, Unreachable };
  // The rule of a table that a Constraint error broke, and its columns where the database names them.
  enum class Rule : quint8 { None, Required, Unique, Reference };
  StoreError(Kind kind, const QString& message, Rule rule = Rule::None, QStringList columns = {});
  Kind kind() const { return kind_; }
  Rule rule() const { return rule_; }
  const QStringList& columns() const { return columns_; }

 private:
  Kind kind_;
  Rule rule_;
  QStringList columns_;
};

// Parameters are written ? and bound in order. Columns declared AMOUNT hold whole millionths: a double in a
// Variant or a record set, qint64 * 10^-6 in the database; use scaled() / unscaled() around arithmetic.
// Statements are written in the part of SQL that SQLite and PostgreSQL share; nulls are the smallest values in every
// order, names match without regard to case, LIKE ignores case.
// Declared types and their DataType: INTEGER LargeInt, BOOLEAN Boolean (1/0), AMOUNT Float, TEXT or
// VARCHAR(n) WideString (size n), DATE Date (text yyyyMMdd), TIMESTAMP DateTime (text yyyyMMddThhmmss),
// BLOB Blob. Text compares by the collation KALVOR: without regard to case, Cyrillic too.
// A column of an expression has no declared type: name it "Name:TYPE" (SELECT SUM(Amount) AS "Total:AMOUNT")
// and the column is called Name and has that type; without it the type is that of the first row's value.
class KALVOR_SERVER Statement {
 public:
  virtual ~Statement() = default;
  virtual void bind(int index, const Variant& value) = 0;  // index from 0; a double is an amount, see bindAmount
  virtual void bindAmount(int index, double value) = 0;    // as whole millionths
  virtual bool step() = 0;                                 // true: a row is there
  virtual void reset() = 0;
  virtual int columnCount() const = 0;
  virtual FieldDef column(int index) const = 0;
  virtual bool isNull(int index) const = 0;
  virtual qint64 integer(int index) const = 0;
  virtual QString text(int index) const = 0;
  virtual Variant value(int index) const = 0;              // by the column's declared type
  virtual void appendRowTo(RecordSet& records) const = 0;  // its columns in order; further ones are left out
};

class KALVOR_SERVER Connection {
 public:
  virtual ~Connection() = default;
  virtual Dialect dialect() const = 0;
  virtual std::shared_ptr<Statement> prepare(const QString& sql) = 0;  // cached by text
  virtual void define(const QString& statement) = 0;  // CREATE, ALTER, DROP with the types above, without parameters
  virtual void begin(bool writing) = 0;   // writing: takes the writer's lock at once; inside another: a savepoint
  virtual void commit() = 0;
  virtual void rollback() noexcept = 0;
  virtual bool inTransaction() const = 0;
  virtual qint64 changedRows() const = 0;
  // What the database itself finds damaged or breaking its own rules, one text each; empty: nothing. Reads all of a
  // SQLite file; PostgreSQL tells what it has noticed so far. Sees the state of the transaction that it is called in.
  virtual QStringList faults() = 0;
  // Whether commits wait for the disk. Off for what may be lost with the power, such as sessions.
  virtual void setDurable(bool on) = 0;

  qint64 execute(const QString& sql, const VariantArray& values = {});       // rows changed
  RecordSet query(const QString& sql, const VariantArray& values = {});
  Variant value(const QString& sql, const VariantArray& values = {});       // first column of the first row
};

// Rolls back unless committed.
class KALVOR_SERVER Transaction {
 public:
  explicit Transaction(Connection& connection, bool writing = true);
  ~Transaction();
  void commit();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

 private:
  Connection& connection_;
  bool open_ = true;
};

constexpr qint64 amountScale = 1'000'000;
KALVOR_SERVER qint64 scaled(double amount);  // half away from zero
constexpr double unscaled(qint64 millionths) { return double(millionths) / double(amountScale); }

// A database file, or ":memory:" for one connection alone. A connection is used by one thread at a time.
KALVOR_SERVER std::unique_ptr<Connection> openSqlite(const QString& fileName, bool readOnly);

// Read: nothing can be written through it. Write: one writing transaction at a time in the whole database. State: as
// Write, for the server's own tables of sessions, whose writers wait for each other only.
enum class ConnectionUse : quint8 { Read, Write, State };
// A libpq URI, "postgresql://...". Throws StoreError (Unreachable) when nobody answers.
KALVOR_SERVER std::unique_ptr<Connection> openPostgres(const QString& uri, ConnectionUse use);

}  // namespace kalvor::server
