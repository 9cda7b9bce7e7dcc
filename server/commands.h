// What kalvor-server does besides serving: making a database, loading files into it.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// Makes the demo company in a database without any, and the file when there is none; brings an existing database to
// this version, the forms that it does not have yet among it. A name is a file or a libpq URI.
KALVOR_SERVER void prepareDatabase(const QString& database);

// The program's arguments from the command on: init, load, check, backup, restore, fingerprint, help; the exit code.
KALVOR_SERVER int runCommand(const QStringList& arguments);

}  // namespace kalvor::server
