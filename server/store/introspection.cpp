#include "server/store/introspection.h"

namespace kalvor::server {

const ColumnInfo* TableInfo::column(QStringView columnName) const
{
  for (const ColumnInfo& info : columns) {
    if (columnName.compare(info.name, Qt::CaseInsensitive) == 0) {
      return &info;
    }
  }
  return nullptr;
}

QList<TableInfo> readTables(Connection& connection)
{
  QList<TableInfo> tables;
  auto names = connection.prepare(QStringLiteral(
      "SELECT name, type FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!' "
      "ORDER BY name"));
  while (names->step()) {
    TableInfo table;
    table.name = names->text(0);
    table.view = names->text(1) == u"view";
    // Preparing a SELECT gives the declared types, those behind a view's columns too.
    auto rows = connection.prepare(QStringLiteral("SELECT * FROM \"%1\" LIMIT 0").arg(table.name));
    for (int i = 0; i < rows->columnCount(); ++i) {
      const FieldDef field = rows->column(i);
      table.columns.append({field.name, field.type, field.size});
    }
    tables.append(table);
  }
  return tables;
}

}  // namespace kalvor::server
