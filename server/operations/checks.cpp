#include "server/checks/contragent_checks.h"
#include "server/checks/unit_cost.h"
#include "server/operations/argument_values.h"
#include "server/operations/handlers.h"

namespace kalvor::server {

Variant callCheckSaleContragentParams(CallContext& call)
{
  const qint64 amount = amountArgument(call.arguments.at(1), QStringLiteral("сума"));
  const Transaction snapshot(call.db, false);
  return int(checkSaleContragent(call.access(), call.text(0), amount, call.integer(2), call.core.today()));
}

Variant callCheckItemUnitCost(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  return int(checkItemUnitCost(call.access(), call.text(0), call.integer(1), call.core.today()));
}

}  // namespace kalvor::server
