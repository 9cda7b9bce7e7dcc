// What kalvor-server does besides serving: making a database, loading files into it.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// Makes the database with the demo company when there is no file; brings an existing one to this version,
// the forms that it does not have yet among it.
KALVOR_SERVER void prepareDatabase(const QString& fileName);

// The program's arguments from the command on: init, load, help; the exit code.
KALVOR_SERVER int runCommand(const QStringList& arguments);

}  // namespace kalvor::server
