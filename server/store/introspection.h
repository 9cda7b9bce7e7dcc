// Which tables, views and columns the database has.
#pragma once

#include "server/store/connection.h"

namespace kalvor::server {

struct ColumnInfo {
  QString name;          // as declared
  DataType type = DataType::WideString;
  int size = 0;          // VARCHAR(n); 0 = no limit
  bool notNull = false;
  bool hasDefault = false;
};

struct TableInfo {
  QString name;
  bool view = false;
  QList<ColumnInfo> columns;

  const ColumnInfo* column(QStringView columnName) const;  // without regard to case; null when missing
};

// Every table and view in the order of their names. Column types of a view are those of the columns behind it.
KALVOR_SERVER QList<TableInfo> readTables(Connection& connection);

}  // namespace kalvor::server
