// Adds rows to one table through one prepared statement.
#pragma once

#include <initializer_list>
#include <memory>

#include "server/store/connection.h"

namespace kalvor::server {

class KALVOR_SERVER RowInserter {
 public:
  RowInserter(Connection& connection, const QString& table, const QStringList& columns);

  // One value a column, in order; amounts as whole millionths (an integer), null an invalid Variant. Throws StoreError.
  void insert(const Variant* values, qsizetype count);
  void insert(std::initializer_list<Variant> values) { insert(values.begin(), qsizetype(values.size())); }
  void insert(const VariantArray& values) { insert(values.constData(), values.size()); }

 private:
  std::shared_ptr<Statement> statement_;
  qsizetype columns_ = 0;
};

}  // namespace kalvor::server
