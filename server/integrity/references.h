// Columns that hold the key of another record.
#pragma once

#include "server/integrity/consistency.h"

namespace kalvor::server {

// One check a table: every reference of its records leads to a record, of the same company where it belongs to one.
QList<ConsistencyCheck> referenceChecks();

}  // namespace kalvor::server
