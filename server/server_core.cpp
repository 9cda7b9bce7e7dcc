#include "server/server_core.h"

#include "server/store/database.h"
#include "server/store/migrations.h"
#include "server/store/reader_role.h"

namespace kalvor::server {

ServerCore::Databases ServerCore::Databases::of(const QString& name)
{
  if (isPostgresUri(name)) {
    return {name, name, nullptr};
  }
  if (name != u":memory:") {
    return {name, name + QStringLiteral("-sessions"), nullptr};
  }
  const auto folder = std::make_shared<QTemporaryDir>();
  return {folder->filePath(QStringLiteral("company.db")), folder->filePath(QStringLiteral("sessions.db")), folder};
}

ServerCore::ServerCore(Databases databases) : databases_(std::move(databases)), state_(databases_.state)
{
  const auto writer = openWriter();
  migrate(*writer);
  grantReading(*writer);
}

std::unique_ptr<Connection> ServerCore::openReader() const
{
  return openDatabase(databases_.company, ConnectionUse::Read);
}

std::unique_ptr<Connection> ServerCore::openWriter() const
{
  auto writer = openDatabase(databases_.company, ConnectionUse::Write);
  writer->setDurable(!databases_.folder);
  return writer;
}

}  // namespace kalvor::server
