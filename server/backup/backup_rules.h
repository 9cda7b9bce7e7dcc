// What a copy must satisfy before it counts.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

class Connection;

enum class Violations : quint8 { Refuse, Accept };

// The version of the tables of a company's database; throws BackupError when it is none, or of a newer program.
KALVOR_SERVER int knownVersion(Connection& connection, const QString& shown);
// That a version is not newer than this program's. Throws BackupError.
KALVOR_SERVER void requireKnownVersion(int version, const QString& shown);
KALVOR_SERVER int newestVersion();

// Runs every check; damage is refused in any case, what records violate unless it is accepted. Tells violations on
// the error output. Of an older version only the storage is looked at. Throws BackupError.
KALVOR_SERVER void requireSound(Connection& connection, int version, Violations violations, const QString& shown);

}  // namespace kalvor::server
