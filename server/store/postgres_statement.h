// A prepared statement of PostgreSQL as the store's Statement. All its rows are fetched with the first step.
#pragma once

#include "server/store/postgres_session.h"

namespace kalvor::server {

class PostgresStatement : public Statement {
 public:
  PostgresStatement(std::shared_ptr<PostgresSession> session, const QString& sql, StatementUse use);

  void bind(int index, const Variant& value) override;
  void bindAmount(int index, double value) override;
  bool step() override;
  void reset() override;
  int columnCount() const override { return int(prepared_->columns.size()); }
  FieldDef column(int index) const override;
  bool isNull(int index) const override;
  qint64 integer(int index) const override;
  QString text(int index) const override;
  Variant value(int index) const override;
  void appendRowTo(RecordSet& records) const override;

 private:
  // What an expression without a declared type holds, by the database's type and the value.
  enum class Shape : quint8 { Integer, Real, Blob, Text };
  Shape shapeOf(int index) const;
  std::string_view utf8(int index) const;
  double real(int index) const;
  QByteArray blob(int index) const;
  void bindText(int index, const QByteArray& bytes, bool binary = false);
  void appendCellTo(Column& column, DataType type, int index) const;

  std::shared_ptr<PostgresSession> session_;
  PostgresPreparedPtr prepared_;
  std::vector<PostgresValue> values_;
  PostgresResult result_;
  int row_ = -1;
};

}  // namespace kalvor::server
