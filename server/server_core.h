// What all calls of one server share. No authority: everything that counts is in the databases behind it.
#pragma once

#include "server/catalogue/metadata.h"
#include "server/session/state_store.h"

namespace kalvor::server {

class KALVOR_SERVER ServerCore {
 public:
  // Names of the company's database and of the one of sessions; both in memory for ":memory:".
  struct Databases {
    QString company;
    QString state;
    static Databases of(const QString& name);
  };

  // Brings the database to this program's version. Throws StoreError.
  explicit ServerCore(Databases databases);

  std::unique_ptr<Connection> openReader() const { return openSqlite(databases_.company, true); }
  std::unique_ptr<Connection> openWriter() const { return openSqlite(databases_.company, false); }
  StateStore& state() { return state_; }
  MetadataCache& metadata() { return metadata_; }

  QString serverName = QStringLiteral("KalvorServer");

 private:
  Databases databases_;
  std::unique_ptr<Connection> first_;  // keeps a database in memory alive
  StateStore state_;
  MetadataCache metadata_;
};

}  // namespace kalvor::server
