// What the server knows of forms: their stored queries, fields and descriptions, as one consistent state. Read once
// and again after an administrator changed it through any server.
#pragma once

#include <memory>
#include <mutex>

#include "server/catalogue/stored_query.h"

namespace kalvor::server {

struct FormDescription {
  int formId = 0;
  int dsIndex = 0;
  QString baseTable;
  VariantArray row;  // the eleven values of GetFormsDescription
};

class KALVOR_SERVER Metadata {
 public:
  static std::shared_ptr<const Metadata> read(Connection& connection);

  const Catalogue& catalogue() const { return catalogue_; }
  // Null when there is none. A query whose text cannot be used is Internal (RpcError).
  const StoredQuery* query(int formId, int dsIndex) const;
  const StoredQuery* queryById(int id) const;
  QList<const StoredQuery*> queriesOfForm(int formId) const;   // by dataset index
  const FormDescription* form(int formId, int dsIndex) const;
  QList<const StoredQuery*> queriesOver(const TableInfo& table) const;  // that write to it; by form and index
  QList<int> formsOver(const QString& baseTable) const;        // whose master is that table

 private:
  void readQueries(Connection& connection);
  void readFields(Connection& connection);
  void readForms(Connection& connection);
  const StoredQuery* usable(const StoredQuery* query) const;

  Catalogue catalogue_;
  std::vector<std::unique_ptr<StoredQuery>> queries_;  // by form and index
  QHash<int, StoredQuery*> byId_;
  QHash<int, QString> broken_;                         // query id -> why
  QList<FormDescription> forms_;
};

using MetadataPtr = std::shared_ptr<const Metadata>;

class KALVOR_SERVER MetadataCache {
 public:
  MetadataPtr current(Connection& connection);
  // For whoever has changed a table that metadata comes from, in the same transaction.
  static void touch(Connection& connection);
  static bool isMetadataTable(QStringView table);

 private:
  std::mutex mutex_;
  qint64 generation_ = 0;
  MetadataPtr current_;
};

}  // namespace kalvor::server
