#include "server/store/migrations.h"

#include <QDir>
#include <QFile>
#include <algorithm>

#include "server/store/schema_script.h"

namespace kalvor::server {

QList<Migration> embeddedMigrations()
{
  QList<Migration> migrations;
  const QDir folder(QStringLiteral(":/schema"));
  for (const QString& name : folder.entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name)) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
      throw StoreError(StoreError::Kind::Other, QStringLiteral("cannot read ") + name);
    }
    migrations.append({name.section(u'_', 0, 0).toInt(), name, QString::fromUtf8(file.readAll())});
  }
  return migrations;
}

namespace {

// What PostgreSQL needs before the first table: text that ignores case, its order, functions that SQLite has.
void preparePostgres(Connection& connection)
{
  // Servers that start together on an empty database do this one after another.
  connection.execute(QStringLiteral("SELECT pg_advisory_xact_lock(1)"));
  const QString lower = connection.value(QStringLiteral("SELECT lower('Я')")).toString();
  if (lower != u"я" || connection.value(QStringLiteral("SHOW server_encoding")).toString() != u"UTF8") {
    throw StoreError(StoreError::Kind::Other,
                     QStringLiteral("the database must have the encoding UTF8 and a character type (LC_CTYPE) that knows "
                                    "Cyrillic letters, such as C.UTF-8 or bg_BG.UTF-8"));
  }
  QFile file(QStringLiteral(":/state/postgres_prelude.sql"));
  if (!file.open(QIODevice::ReadOnly)) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("cannot read postgres_prelude.sql"));
  }
  runScript(connection, QString::fromUtf8(file.readAll()));
}

bool hasRecord(Connection& connection, const QString& record)
{
  const QString sql = connection.dialect() == Dialect::Sqlite
                          ? QStringLiteral("SELECT 1 FROM sqlite_schema WHERE name = ?")
                          : QStringLiteral("SELECT 1 WHERE to_regclass(?) IS NOT NULL");
  return !isNull(connection.value(sql, {record}));
}

void prepareRecord(Connection& connection, const QString& record)
{
  if (hasRecord(connection, record)) {
    return;
  }
  Transaction transaction(connection);
  if (hasRecord(connection, record)) {
    return;
  }
  if (connection.dialect() == Dialect::PostgreSql) {
    preparePostgres(connection);
  }
  connection.define(QStringLiteral("CREATE TABLE %1 (Number INTEGER NOT NULL PRIMARY KEY, Name TEXT NOT NULL, "
                                   "AppliedAt TIMESTAMP NOT NULL)").arg(record));
  transaction.commit();
}

}  // namespace

void runScript(Connection& connection, const QString& script)
{
  for (const QString& statement : splitScript(script)) {
    connection.define(statement);
  }
}

int migrate(Connection& connection, const QList<Migration>& migrations, const QString& record)
{
  prepareRecord(connection, record);
  const Variant last = connection.value(QStringLiteral("SELECT MAX(Number) FROM ") + record);
  const auto newest = std::max_element(migrations.begin(), migrations.end(),
                                       [](const Migration& a, const Migration& b) { return a.number < b.number; });
  if (newest != migrations.end() && !isNull(last) && last.toInt() > newest->number) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("the database is of version %1, this program knows %2")
        .arg(last.toInt()).arg(newest->number));
  }
  const auto isApplied = [&](const Migration& migration) {
    return !isNull(connection.value(QStringLiteral("SELECT Number FROM %1 WHERE Number = ?").arg(record), {migration.number}));
  };
  int applied = 0;
  for (const Migration& migration : migrations) {
    if (isApplied(migration)) {
      continue;
    }
    Transaction transaction(connection);
    // Another program may have been quicker.
    if (isApplied(migration)) {
      continue;
    }
    runScript(connection, migration.sql);
    connection.execute(QStringLiteral("INSERT INTO %1 (Number, Name, AppliedAt) VALUES (?, ?, ?)").arg(record),
                       {migration.number, migration.name, QDateTime::currentDateTime()});
    transaction.commit();
    ++applied;
  }
  return applied;
}

}  // namespace kalvor::server
