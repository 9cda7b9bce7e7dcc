// The tables and columns that calls may reach. The server's own tables (srv_...) and the columns that hold secrets
// are not in it, so that no text, filter or delta can name them.
#pragma once

#include <QHash>

#include "server/store/introspection.h"

namespace kalvor::server {

class KALVOR_SERVER Catalogue {
 public:
  static Catalogue read(Connection& connection);
  // Without regard to case; null when there is no such table.
  const TableInfo* table(QStringView name) const;
  // The column that carries the company of a table's rows: Comp_Id, or Id where a row is a company or its setup.
  // Null when the table belongs to no company.
  const ColumnInfo* companyColumn(const TableInfo& table) const;

 private:
  QHash<QString, TableInfo> tables_;  // by case-folded name
};

}  // namespace kalvor::server
