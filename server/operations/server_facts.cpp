#include "server/operations/handlers.h"

namespace kalvor::server {

Variant callServerName(CallContext& call) { return call.core.serverName; }

Variant callGetConnectionString(CallContext& call)
{
  return QStringLiteral("Provider=%1;Initial Catalog=%2;User ID=%3")
      .arg(call.core.serverName, call.session.companyId, call.session.userId);
}

}  // namespace kalvor::server
