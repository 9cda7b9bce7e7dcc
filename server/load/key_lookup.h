// Finds records by what users call them: an item by its code, an invoice by its number.
#pragma once

#include <QHash>

#include "server/store/connection.h"

namespace kalvor::server {

class KALVOR_SERVER KeyLookup {
 public:
  // An empty company: the table is shared.
  KeyLookup(Connection& connection, const QString& table, const QString& keyColumn, const QString& companyId);

  enum class Outcome : quint8 { Found, Missing, Ambiguous };
  // The Id of the record whose key equals the text letter by letter, else without regard to case.
  Outcome find(const QString& key, QString& id);

 private:
  std::shared_ptr<Statement> statement_;
  QString companyId_;
  QHash<QString, QString> known_;
};

// Whether a record with exactly this key is there.
class KALVOR_SERVER ExistingKeys {
 public:
  ExistingKeys(Connection& connection, const QString& table, const QString& keyColumn, const QString& companyId);
  bool contains(const QString& key);

 private:
  std::shared_ptr<Statement> statement_;
  QString companyId_;
};

}  // namespace kalvor::server
