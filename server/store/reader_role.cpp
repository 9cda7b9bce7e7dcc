#include "server/store/reader_role.h"

#include "server/store/asked_rules.h"

namespace kalvor::server {

namespace {

// The columns that the role may read of a table with secret ones; empty: all of them.
QString openColumns(Connection& writer, const QString& table)
{
  QStringList open;
  bool secret = false;
  auto columns = writer.prepare(QStringLiteral("SELECT attname, quote_ident(attname) FROM pg_attribute WHERE attnum > 0 AND "
                                               "NOT attisdropped AND attrelid = to_regclass(quote_ident(CAST(? AS varchar)))"));
  columns->bind(0, table);
  while (columns->step()) {
    const bool hidden = isSecretColumn(table, columns->text(0));
    secret = secret || hidden;
    if (!hidden) {
      open.append(columns->text(1));
    }
  }
  return secret ? QStringLiteral(" (%1)").arg(open.join(QStringLiteral(", "))) : QString();
}

}  // namespace

void grantReading(Connection& writer)
{
  if (writer.dialect() != Dialect::PostgreSql) {
    return;
  }
  const QString role = writer.value(QStringLiteral("SELECT quote_ident(rolname) FROM pg_roles WHERE rolname = "
                                                   "current_database() || '_reader'")).toString();
  if (role.isEmpty()) {
    return;
  }
  Transaction transaction(writer);
  auto tables = writer.prepare(QStringLiteral(
      "SELECT c.relname, quote_ident(c.relname) FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
      "AND n.nspname = current_schema() WHERE c.relkind IN ('r', 'p', 'v', 'm') ORDER BY c.relname"));
  while (tables->step()) {
    const QString name = tables->text(1);
    writer.execute(QStringLiteral("REVOKE ALL ON %1 FROM %2").arg(name, role));
    if (!isServerTable(tables->text(0))) {
      writer.execute(QStringLiteral("GRANT SELECT%1 ON %2 TO %3").arg(openColumns(writer, tables->text(0)), name, role));
    }
  }
  transaction.commit();
}

}  // namespace kalvor::server
