// kalvor-server init [--db FILE] [--invoices N [--lines L]] [--company ID]
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor::server {

// The arguments after "init". Makes the database and the demo companies where they are missing, then N more sale
// invoices of L lines each in a company. Exit code: 0 done, 1 refused, 2 called wrongly.
KALVOR_SERVER int runInit(const QStringList& arguments,
                          const std::function<QString(const QString& digest)>& hashDigest);

}  // namespace kalvor::server
