// What a loaded record takes from the company's setup and from the records it refers to.
#pragma once

#include <memory>
#include <stdexcept>

#include "server/load/company_defaults.h"

namespace kalvor::server {

// One record on its way into a table: a value a column.
class LoadRow {
 public:
  explicit LoadRow(const QStringList& columns) : columns_(columns), values_(columns.size()) {}

  int slot(QLatin1StringView column) const { return int(columns_.indexOf(column)); }
  Variant& operator[](int index) { return values_[index]; }
  QString text(int index) const { return values_.at(index).toString(); }
  qint64 integer(int index) const { return values_.at(index).toLongLong(); }
  bool isNull(int index) const { return kalvor::isNull(values_.at(index)); }
  void setDefault(int index, const Variant& value)
  {
    if (isNull(index)) {
      values_[index] = value;
    }
  }
  const VariantArray& values() const { return values_; }
  void clear() { std::fill(values_.begin(), values_.end(), Variant()); }

 private:
  QStringList columns_;
  VariantArray values_;
};

// The value of a column cannot be completed; the message is for the user.
class CompletionError : public std::runtime_error {
 public:
  CompletionError(const QString& column, const QString& message)
      : std::runtime_error(message.toStdString()), column_(column) {}
  const QString& column() const { return column_; }

 private:
  QString column_;
};

class RowCompletion {
 public:
  virtual ~RowCompletion() = default;
  virtual QStringList columns() const = 0;       // that it may fill or read, beside those of the file
  virtual void start(const LoadRow& row) = 0;    // learns where its columns are
  virtual void complete(LoadRow& row) = 0;       // values that the file gave stay; throws CompletionError
  virtual void finish() {}                       // after the last record, in the same transaction
};

// For a table that has one; else null.
KALVOR_SERVER std::unique_ptr<RowCompletion> rowCompletion(const QString& table, Connection& connection,
                                                           const CompanyDefaults& defaults);

// Sums of the documents from their lines, as they stand in the database.
KALVOR_SERVER void recalculateSaleInvoices(Connection& connection, const CompanyDefaults& defaults,
                                           const QStringList& documentIds);

}  // namespace kalvor::server
