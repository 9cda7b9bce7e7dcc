// kalvor-server check [--db FILE|URI] [--config FILE]
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// The arguments after "check". Prints a line for every check; users may work meanwhile. Exit code: 0 all hold, 1 one
// does not or the database cannot be read, 2 called wrongly.
KALVOR_SERVER int runCheck(const QStringList& arguments);

}  // namespace kalvor::server
