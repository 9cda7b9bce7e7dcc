// A database by its name: a file of SQLite, or a libpq URI ("postgresql://...").
#pragma once

#include "server/store/connection.h"

namespace kalvor::server {

KALVOR_SERVER bool isPostgresUri(const QString& name);
// Throws StoreError.
KALVOR_SERVER std::unique_ptr<Connection> openDatabase(const QString& name, ConnectionUse use);
// As it may stand in a log or a message: a URI without user, password and parameters.
KALVOR_SERVER QString shownDatabase(const QString& name);
// Whether there is something to open: a file, or any URI.
KALVOR_SERVER bool mayExist(const QString& name);
// Makes the folder of a file that is to be created.
KALVOR_SERVER void makeFolderOf(const QString& name);
// What KALVOR_DATABASE names, else the file in the user's data folder.
KALVOR_SERVER QString defaultDatabase();

}  // namespace kalvor::server
