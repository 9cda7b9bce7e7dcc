// What all calls of one server share. No authority: everything that counts is in the databases behind it.
#pragma once

#include <QDate>
#include <QTemporaryDir>
#include <functional>

#include "server/catalogue/metadata.h"
#include "server/session/state_store.h"

namespace kalvor::server {

class KALVOR_SERVER ServerCore {
 public:
  // Names of the company's database and of the one of sessions, which is the same in PostgreSQL. ":memory:" stands for two that are gone with this
  // object: in a temporary folder, since readers and a writer of one database in memory would wait for each other.
  struct Databases {
    QString company;
    QString state;
    std::shared_ptr<QTemporaryDir> folder;  // null: they stay
    static Databases of(const QString& name);
  };

  // Brings the database to this program's version. Throws StoreError.
  explicit ServerCore(Databases databases);

  std::unique_ptr<Connection> openReader() const;
  std::unique_ptr<Connection> openWriter() const;
  StateStore& state() { return state_; }
  MetadataCache& metadata() { return metadata_; }

  QString serverName = QStringLiteral("KalvorServer");
  // What prices, rates and debts take for today; another one is put in before the first call.
  std::function<QDate()> today = &QDate::currentDate;

 private:
  Databases databases_;
  StateStore state_;
  MetadataCache metadata_;
};

}  // namespace kalvor::server
