// The arguments of "kalvor-server serve".
#pragma once

#include <QStringList>

#include "server/server.h"

namespace kalvor::server {

// Throws UsageError for what cannot be meant.
KALVOR_SERVER ServerOptions serveOptions(const QStringList& arguments);

}  // namespace kalvor::server
