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
    auto columns = connection.prepare(
        QStringLiteral("SELECT name, \"notnull\", dflt_value IS NOT NULL FROM pragma_table_xinfo(?) ORDER BY cid"));
    columns->bind(0, table.name);
    // Preparing a SELECT gives the declared types, those behind a view's columns too.
    auto rows = connection.prepare(QStringLiteral("SELECT * FROM \"%1\" LIMIT 0").arg(table.name));
    for (int i = 0; columns->step(); ++i) {
      const FieldDef field = rows->column(i);
      table.columns.append({columns->text(0).section(u':', 0, 0), field.type, field.size, columns->integer(1) != 0,
                            columns->integer(2) != 0});
    }
    tables.append(table);
  }
  return tables;
}

}  // namespace kalvor::server
