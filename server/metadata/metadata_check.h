// Tells what is wrong with the forms, stored queries and field descriptions of a database.
#pragma once

#include "server/store/connection.h"

namespace kalvor::server {

// One line a fault, each with the query or form it is in; empty when everything fits: statements prepare, columns and
// field rows name each other, filter names, keys and orders are real columns, look-ups find their forms and fields,
// aggregates name a function and a field, option lists and macros are there. For administrators and tests.
KALVOR_SERVER QStringList checkMetadata(Connection& connection);

}  // namespace kalvor::server
