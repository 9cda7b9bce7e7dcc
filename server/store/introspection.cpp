#include "server/store/introspection.h"

#include <QHash>
#include <algorithm>

#include "server/store/postgres_sql.h"
#include "server/store/stored_type.h"

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

namespace {

QList<TableInfo> sqliteTables(Connection& connection)
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

DataType typeOfPostgres(const QString& type)
{
  static const QHash<QString, DataType> types{
      {QStringLiteral("bigint"), DataType::LargeInt}, {QStringLiteral("integer"), DataType::LargeInt},
      {QStringLiteral("smallint"), DataType::LargeInt}, {QStringLiteral("bytea"), DataType::Blob},
      {QStringLiteral("double precision"), DataType::Float}};
  return types.value(type, DataType::WideString);
}

// Those of the schema that new tables go to. Names and types as they were declared; what has no declaration, such as a
// view's column, is known by the database's own type.
QList<TableInfo> postgresTables(Connection& connection)
{
  QList<TableInfo> tables;
  auto rows = connection.prepare(QStringLiteral(
      "SELECT c.relname, obj_description(c.oid, 'pg_class'), CASE WHEN c.relkind IN ('v', 'm') THEN 1 ELSE 0 END, a.attname, "
      "col_description(a.attrelid, a.attnum), format_type(a.atttypid, NULL), CASE WHEN a.attnotnull THEN 1 ELSE 0 END, "
      "CASE WHEN a.atthasdef THEN 1 ELSE 0 END "
      "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace AND n.nspname = current_schema() "
      "JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped "
      "WHERE c.relkind IN ('r', 'p', 'v', 'm') ORDER BY c.relname, a.attnum"));
  QString last;
  while (rows->step()) {
    if (tables.isEmpty() || rows->text(0) != last) {
      last = rows->text(0);
      tables.append({columnComment(last, rows->text(1)).name, rows->integer(2) != 0, {}});
    }
    const ColumnComment comment = columnComment(rows->text(3), rows->text(4));
    const DeclaredType declared = parseDeclaredType(comment.type);
    tables.last().columns.append(
        {comment.name, declared.type == StoredType::None ? typeOfPostgres(rows->text(5)) : dataTypeOf(declared.type),
         declared.size, rows->integer(6) != 0, rows->integer(7) != 0});
  }
  std::sort(tables.begin(), tables.end(), [](const TableInfo& a, const TableInfo& b) { return a.name < b.name; });
  return tables;
}

}  // namespace

QList<TableInfo> readTables(Connection& connection)
{
  return connection.dialect() == Dialect::Sqlite ? sqliteTables(connection) : postgresTables(connection);
}

}  // namespace kalvor::server
