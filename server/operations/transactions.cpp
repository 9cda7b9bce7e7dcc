#include "server/operations/handlers.h"

namespace kalvor::server {

// The writer belongs to the session from trStart to trCommit or trRollback; whoever runs these calls sees to it.
Variant callTrStart(CallContext& call)
{
  call.db.begin(true);
  return 0;
}

Variant callTrCommit(CallContext& call)
{
  call.db.commit();
  return 0;
}

Variant callTrRollback(CallContext& call)
{
  call.db.rollback();
  return 0;
}

}  // namespace kalvor::server
