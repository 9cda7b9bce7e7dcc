// The role of readers of a PostgreSQL database, which its owner may make: it may read what users may see, nothing else.
#pragma once

#include "server/store/connection.h"

namespace kalvor::server {

// Gives the role DATABASE_reader, where it is there, its reading rights on the tables as they are now: every table but
// the server's own, every column but secret ones. Nothing happens on SQLite. Throws StoreError.
KALVOR_SERVER void grantReading(Connection& writer);

}  // namespace kalvor::server
