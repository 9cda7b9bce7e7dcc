// pg_dump and pg_restore.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor::server {

// Runs one of PostgreSQL's programs and waits for it; with a URI it gets the connection as --dbname and the password,
// if there is one, in its environment. Throws BackupError with what it wrote when it fails or is not installed.
KALVOR_SERVER void runPostgresTool(const QString& program, const QStringList& arguments, const QString& uri = {});

}  // namespace kalvor::server
