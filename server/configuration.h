// Where the server's settings come from: the command line before the environment (KALVOR_...) before the file of
// "key = value" lines that --config names, /etc/kalvor/server.conf without one. A key is an option of "serve" without
// its dashes.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

struct CommandArguments;

// The file that is read where it exists and no other is named.
KALVOR_SERVER QString usualConfigurationFile();

// The arguments of "serve" without --config, and behind them as options what file and environment say and the
// arguments do not. Throws UsageError: a named file that cannot be read, an unknown key, a value that cannot be
// meant, with file and line or the variable.
KALVOR_SERVER QStringList withConfiguration(const QStringList& arguments);

// The database that a command works on: --db, else KALVOR_DATABASE, else that of the file which --config names or the
// usual one, else the user's own. Throws UsageError as above.
KALVOR_SERVER QString databaseOf(const CommandArguments& arguments);

}  // namespace kalvor::server
