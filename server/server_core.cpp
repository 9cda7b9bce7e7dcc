#include "server/server_core.h"

#include "server/store/migrations.h"

namespace kalvor::server {

ServerCore::Databases ServerCore::Databases::of(const QString& name)
{
  if (name != u":memory:") {
    return {name, name + QStringLiteral("-sessions"), nullptr};
  }
  const auto folder = std::make_shared<QTemporaryDir>();
  return {folder->filePath(QStringLiteral("company.db")), folder->filePath(QStringLiteral("sessions.db")), folder};
}

ServerCore::ServerCore(Databases databases) : databases_(std::move(databases)), state_(databases_.state)
{
  migrate(*openWriter());
}

std::unique_ptr<Connection> ServerCore::openWriter() const
{
  auto writer = openSqlite(databases_.company, false);
  writer->setDurable(!databases_.folder);
  return writer;
}

}  // namespace kalvor::server
