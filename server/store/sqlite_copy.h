// Whole databases of SQLite as files.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

// Makes the empty file a copy of a database as it is at one moment, while others read and write it. The copy needs no
// second file beside it. Throws StoreError; the file is useless then.
KALVOR_SERVER void copySqlite(const QString& from, const QString& to);

// Brings what lies beside a database file into it, so that the file alone is the database. False when somebody has it
// open. Throws StoreError (Corrupt) when it is no sound database.
KALVOR_SERVER bool foldSqlite(const QString& fileName);

}  // namespace kalvor::server
