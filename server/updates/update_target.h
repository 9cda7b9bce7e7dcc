// The table behind one provider of a save, and which of its columns the delta may write.
#pragma once

#include "server/queries/data_request.h"
#include "server/rights/form_rights.h"

namespace kalvor::server {

struct UpdateColumn {
  int field = 0;                 // in the delta
  const ColumnInfo* column = nullptr;
  QString caption;               // for messages
  bool seriesNumber = false;     // numbered by the record's document series
};

// The columns that the server fills itself; null where the table has none.
struct StampColumns {
  const ColumnInfo* company = nullptr;
  const ColumnInfo* user = nullptr;
  const ColumnInfo* moment = nullptr;
  const ColumnInfo* group = nullptr;

  bool contains(const ColumnInfo* column) const
  {
    return column == company || column == user || column == moment || column == group;
  }
};

struct KALVOR_SERVER UpdateTarget {
  DataRequest request;
  const StoredQuery* query = nullptr;
  const TableInfo* table = nullptr;
  const ColumnInfo* key = nullptr;
  int keyField = -1;             // in the delta
  StampColumns stamps;
  QList<UpdateColumn> columns;   // without the key and the stamps
  FormRights rights;
  DeltaPtr delta;

  QString captionOf(const QString& column) const;
  // "Table"."Column" conditions that pick one row of the session's company.
  Fragment rowCondition(const Variant& keyValue, const Session& session) const;
};

// Throws RpcError (Refused) when nothing can be written through the request, or the delta has no key.
KALVOR_SERVER UpdateTarget updateTarget(const Access& access, DataRequest request, DeltaPtr delta);

}  // namespace kalvor::server
