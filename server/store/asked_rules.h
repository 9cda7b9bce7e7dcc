// What a statement that a client's text caused may name. Known inside server/store and to the catalogue.
#pragma once

#include <QStringView>

#include "layer_export.h"

namespace kalvor::server {

// Tables of the server itself and of the database: sessions, answers, schemas.
KALVOR_SERVER bool isServerTable(QStringView name);
// Columns that no query shows, such as the users' password hashes.
KALVOR_SERVER bool isSecretColumn(QStringView table, QStringView column);
// Functions that compute from their arguments alone: no files, no settings, no waiting.
KALVOR_SERVER bool isPlainFunction(QStringView name);

// Why the words of a statement are not those of a plain query; empty: they are. For the database whose engine does
// not ask before each table and function that it compiles in.
KALVOR_SERVER QString refusedWord(const QString& sql);

}  // namespace kalvor::server
