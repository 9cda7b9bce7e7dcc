// A database of its own for a test: SQLite, or PostgreSQL where KALVOR_TEST_DATABASE is the URI of a cluster's
// databases, "%1" in the place of a name. Those of PostgreSQL are dropped when the program ends.
#pragma once

#include <QCoreApplication>
#include <QStringList>

#include "server/store/database.h"

namespace kalvor::testing {

inline QString clusterTemplate() { return qEnvironmentVariable("KALVOR_TEST_DATABASE"); }
inline bool onPostgres() { return !clusterTemplate().isEmpty(); }

// The URI of a new, empty database of the cluster.
inline QString newPostgresDatabase()
{
  struct Databases {
    std::unique_ptr<server::Connection> maintenance =
        server::openDatabase(clusterTemplate().arg(QStringLiteral("postgres")), server::ConnectionUse::Write);
    QStringList names;
    ~Databases()
    {
      for (const QString& name : std::as_const(names)) {
        maintenance->execute(QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(name));
      }
    }
  };
  static Databases databases;
  const QString name = QStringLiteral("test_%1_%2").arg(QCoreApplication::applicationPid()).arg(databases.names.size());
  databases.maintenance->execute(QStringLiteral("CREATE DATABASE ") + name);
  databases.names.append(name);
  return clusterTemplate().arg(name);
}

// What a server serves: two databases in memory, or one of the cluster.
inline QString newServerDatabase() { return onPostgres() ? newPostgresDatabase() : QStringLiteral(":memory:"); }

// What a command works on: a file that is not there yet, or an empty database of the cluster.
inline QString newDatabaseName(const QString& file) { return onPostgres() ? newPostgresDatabase() : file; }

// An empty database for one connection.
inline std::unique_ptr<server::Connection> newTestConnection()
{
  return server::openDatabase(newServerDatabase(), server::ConnectionUse::Write);
}

// How the database runs a statement. PostgreSQL: with many rows, which it looks up rather than sorts.
inline QString planOf(server::Connection& connection, const QString& sql)
{
  if (connection.dialect() == server::Dialect::PostgreSql) {
    for (const char* way : {"enable_seqscan", "enable_bitmapscan", "enable_sort"}) {
      connection.execute(QStringLiteral("SET %1 = off").arg(QLatin1StringView(way)));
    }
  }
  const bool sqlite = connection.dialect() == server::Dialect::Sqlite;
  const RecordSet plan = connection.query(QLatin1StringView(sqlite ? "EXPLAIN QUERY PLAN " : "EXPLAIN ") + sql);
  QString text;
  for (qsizetype i = 0; i < plan.rows; ++i) {
    text += plan.value(i, sqlite ? plan.indexOf(u"detail") : 0).toString() + u'\n';
  }
  return text;
}

}  // namespace kalvor::testing
