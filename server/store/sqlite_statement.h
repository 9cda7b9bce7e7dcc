// A prepared statement of SQLite as the store's Statement.
#pragma once

#include "server/store/sqlite_handle.h"
#include "server/store/stored_type.h"

namespace kalvor::server {

class SqliteStatement : public Statement {
 public:
  SqliteStatement(std::shared_ptr<SqliteHandle> handle, QByteArray sql, StatementUse use);
  ~SqliteStatement() override;

  void bind(int index, const Variant& value) override;
  void bindAmount(int index, double value) override;
  bool step() override;
  void reset() override;
  int columnCount() const override;
  FieldDef column(int index) const override;
  bool isNull(int index) const override;
  qint64 integer(int index) const override;
  QString text(int index) const override;
  Variant value(int index) const override;
  void appendRowTo(RecordSet& records) const override;

 private:
  DeclaredType typeOf(int index) const;
  void appendCellTo(Column& column, DataType type, int index) const;
  std::string_view utf8(int index) const;

  std::shared_ptr<SqliteHandle> handle_;
  QByteArray sql_;
  StatementUse use_;
  sqlite3_stmt* statement_;
  mutable QList<DeclaredType> declared_;  // read at first need
};

}  // namespace kalvor::server
