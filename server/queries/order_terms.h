// The order of a list: what the client asks for, as terms of a statement.
#pragma once

#include "server/catalogue/stored_query.h"

namespace kalvor::server {

struct OrderTerm {
  Fragment expression;
  DataType type = DataType::Unknown;
  bool descending = false;
};

// Reads "Name ASC, Other DESC" (names of fields, their filter names or captions; no direction means ASC). A name
// that comes again is left out. Throws RpcError (Refused) for an unknown name and for more than 10 terms.
KALVOR_SERVER QList<OrderTerm> orderTerms(const QString& order, const FieldResolver& fields);

}  // namespace kalvor::server
