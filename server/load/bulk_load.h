// Loads one table from a file of comma-separated values, in one transaction: everything or nothing.
#pragma once

#include <QByteArrayView>
#include <QHash>
#include <stdexcept>

#include "server/store/connection.h"

namespace kalvor::server {

// Column takes the Id of the record of another table whose key column equals the file's cell.
struct LoadLookup {
  QString column;
  QString table;
  QString keyColumn;
  QString fileColumn;
};

enum class ExistingRecords : quint8 { Refuse, Skip };

struct LoadRequest {
  QString table;
  QString fileName;                   // for messages
  QString companyId;
  QString userId;                     // for the audit columns
  QHash<QString, QString> map;        // file column to column; "-" leaves a file column out
  QHash<QString, QString> constants;  // column to the text of its value
  QList<LoadLookup> lookups;
  ExistingRecords existing = ExistingRecords::Refuse;  // records with the same code or number
};

struct LoadResult {
  qint64 rows = 0;
  qint64 skipped = 0;
};

// What is wrong, with file, line and column, for the user.
class KALVOR_SERVER LoadError : public std::runtime_error {
 public:
  explicit LoadError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

// Columns come from the request first, then from the names that the usual files have (load_columns.h), then from a
// header that is a column's own name. Id is made unless it is mapped; company and audit columns are set. Documents
// get their amounts and totals. Throws LoadError and StoreError; nothing is loaded then.
KALVOR_SERVER LoadResult bulkLoad(Connection& connection, const LoadRequest& request, QByteArrayView csv);

}  // namespace kalvor::server
