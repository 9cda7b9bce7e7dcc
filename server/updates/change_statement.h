// Writes what a client's statements change: each as the changes of a form over its table, so that the form's rights,
// its row security, the checks of values and the audit columns hold for it as for a save.
#pragma once

#include <QSet>

#include "server/client_sql/client_change.h"
#include "server/rights/form_rights.h"

namespace kalvor::server {

class KALVOR_SERVER ChangeWriter {
 public:
  explicit ChangeWriter(const Access& access) : access_(access) {}

  // Rows that the user does not see are not there for the statement. Throws RpcError: Refused for a table or a column
  // that no form writes, Forbidden without the right, Invalid for a value that does not suit. Nothing may be committed
  // after that.
  void write(const ClientChange& change);
  // After the last one.
  void finish();

 private:
  const StoredQuery& queryFor(const ClientChange& change, const TableInfo& table) const;
  bool hasRight(const StoredQuery& query, ClientChange::Kind kind) const;

  const Access& access_;
  QSet<QString> insertedMasters_;
  qsizetype rows_ = 0;
  bool metadataChanged_ = false;
};

}  // namespace kalvor::server
