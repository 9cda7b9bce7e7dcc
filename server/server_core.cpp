#include "server/server_core.h"

#include <QUuid>

#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

std::unique_ptr<Connection> migrated(const QString& database)
{
  auto connection = openSqlite(database, false);
  migrate(*connection);
  return connection;
}

}  // namespace

ServerCore::Databases ServerCore::Databases::of(const QString& name)
{
  if (name != u":memory:") {
    return {name, name + QStringLiteral("-sessions")};
  }
  const QString unique = QUuid::createUuid().toString(QUuid::Id128);
  return {QStringLiteral("file:%1?mode=memory").arg(unique), QStringLiteral("file:%1-sessions?mode=memory").arg(unique)};
}

ServerCore::ServerCore(Databases databases)
    : databases_(std::move(databases)), first_(migrated(databases_.company)), state_(databases_.state)
{
}

}  // namespace kalvor::server
