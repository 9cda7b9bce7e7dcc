// Numbers of documents: given out of the counter rows of N_Series in the transaction of the save, so that none is
// skipped and none is given twice.
#pragma once

#include "server/rights/access.h"

namespace kalvor::server {

struct NumberingRequest {
  QString table;
  QString recordId;
  QString field;
  QString seriesId;

  // Of [table, id, field, series, company]; throws RpcError (BadArguments) when it is none.
  static QList<NumberingRequest> listFrom(const Variant& value);
};

// The next number of a series of the session's company: its prefix and the number padded with zeros to the width
// of its highest number, 10 characters in all where it has none. Throws RpcError (Invalid) for an unknown or used up series.
KALVOR_SERVER QString nextNumber(const Access& access, const QString& seriesId);

// Puts a new number into the field of a record that this save has written, unless it has one by now. Throws
// RpcError (Refused, Invalid).
KALVOR_SERVER void giveNumber(const Access& access, const TableInfo& table, const NumberingRequest& request);

}  // namespace kalvor::server
