// Whole client datasets as XML data packets: out to a file, and back in.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// Asks for a file and writes all records there; true when saved. Errors are logged and shown.
KALVOR_RULES bool ExportToXML(TClientDataSet* dataSet);

// Brings the records of a packet into the dataset and sends its changes to the server in one transaction; an empty
// name asks for the file. Records are found by ID; those that are missing are inserted, and where either side has no
// ID field the current record is edited. The statements of a column ADDITIONALDATA run afterwards, each in a
// transaction of its own, and a failed one is in the log.
//
// True when the server took the changes; false when the user chose no file or after an error, which is logged and
// shown. The dataset then keeps its changes. showMessage: the user is told of the success.
KALVOR_RULES bool ImportFromXML(TClientDataSet* dataSet, const QString& fileName, bool showMessage);

}  // namespace kalvor
