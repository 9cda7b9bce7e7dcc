// kalvor-server backup FILE [--db FILE|URI] and restore FILE --db FILE|URI
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// The arguments after the command. Exit code: 0 done, 1 refused or failed, with nothing changed unless the error output says so, 2
// called wrongly. Users may work during a backup.
KALVOR_SERVER int runBackup(const QStringList& arguments);
KALVOR_SERVER int runRestore(const QStringList& arguments);

}  // namespace kalvor::server
