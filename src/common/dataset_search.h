// Finding a record by its key.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// Makes the record with these values of the key fields (";"-separated) current; true when there is one. The
// dataset's own index is in force again afterwards, also after an error. DataError: a number of values that
// differs from that of the fields ("Bound of array do not match with count of KeyFields"), or a missing field
// ("Field %s not found").
KALVOR_RULES bool LocateCDS(TClientDataSet& dataSet, const QString& keyFields, const Variant& keyValues);

}  // namespace kalvor
