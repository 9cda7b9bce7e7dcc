// kalvor-server load TABLE FILE.csv [options]
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// The arguments after "load". Prints the rows loaded and the seconds it took. Exit code: 0 loaded, 1 refused (nothing
// is loaded, the error output says why), 2 called wrongly.
KALVOR_SERVER int runLoad(const QStringList& arguments);

}  // namespace kalvor::server
