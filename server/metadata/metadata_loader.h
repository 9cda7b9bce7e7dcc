// Puts forms, stored queries and field descriptions into the tables S_Forms, S_QueryList and S_FieldList.
#pragma once

#include "server/metadata/metadata_files.h"
#include "server/store/connection.h"

namespace kalvor::server {

enum class ExistingRows : quint8 { Keep, Replace };

// Keep adds only forms and queries that the database does not have, so that what an administrator changed stays;
// Replace brings the program's own back. Runs inside the caller's transaction; running servers notice. Returns how
// many queries it wrote.
KALVOR_SERVER int loadMetadata(Connection& connection, const DeclaredMetadata& metadata, ExistingRows existing);

}  // namespace kalvor::server
