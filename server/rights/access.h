// On whose behalf data is read and written: the connection, what is known of forms, and the session.
#pragma once

#include "server/catalogue/metadata.h"
#include "server/session/session.h"

namespace kalvor::server {

struct Access {
  Connection& db;
  const Metadata& metadata;
  const Session& session;
};

}  // namespace kalvor::server
