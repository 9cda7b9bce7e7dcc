// What other programs need to know of a libpq URI.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor::server {

struct PostgresTarget {
  QString connection;  // "host='db' dbname='kalvor' ...", without a password: it may stand in the list of processes
  QString password;    // for PGPASSWORD; empty: none was given
};

// Throws StoreError (Unreachable) when the text is no URI; libpq's own message may repeat a password.
KALVOR_SERVER void requirePostgresUri(const QString& uri);

// Throws StoreError when the text is no URI; the message holds nothing of it.
KALVOR_SERVER PostgresTarget postgresTarget(const QString& uri);

}  // namespace kalvor::server
