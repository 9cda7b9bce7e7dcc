// Where the columns of a file go.
#pragma once

#include <optional>

#include "server/load/bulk_load.h"
#include "server/load/key_lookup.h"
#include "server/store/introspection.h"

namespace kalvor::server {

// One cell of the file on its way into a column.
struct LoadCell {
  int fileColumn = 0;
  QString fileName;                   // header of the file's column
  const ColumnInfo* column = nullptr;
  std::shared_ptr<KeyLookup> lookup;  // null: the cell's own text
  QString lookupTable;
};

struct LoadConstant {
  const ColumnInfo* column = nullptr;
  Variant value;
};

struct LoadColumns {
  QList<LoadCell> cells;
  QList<LoadConstant> constants;
};

// The table with that name, without regard to case. Throws LoadError; tables of the server itself are not found.
KALVOR_SERVER TableInfo loadableTable(Connection& connection, const QString& name);

// Throws LoadError for a header without a column, a column that comes twice, a table or column that does not exist.
KALVOR_SERVER LoadColumns planColumns(Connection& connection, const LoadRequest& request, const TableInfo& table,
                                      const QStringList& header);

// The column by which users know the table's records; empty when there is none.
KALVOR_SERVER QString naturalKey(const TableInfo& table);

}  // namespace kalvor::server
