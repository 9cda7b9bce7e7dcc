#include "forms/windows/form_server.h"

#include "session/dm.h"

namespace kalvor {

RemoteCalls& sessionCalls()
{
  if (!DM) {
    throw DataError(QStringLiteral("Не е остановена връзка към сървъра"));
  }
  return *DM->ConBroker;
}

bool updateClientData(const VariantArray& packet, const Variant& numbering, const QString& requestId)
{
  VariantArray arguments{packet, numbering};
  const Variant result = sessionCalls().Call(QStringLiteral("UpdateClientData"), arguments, requestId);
  return !isNull(result) && result.toLongLong() == 0;
}

QString absoluteNumberSeries()
{
  return sessionCalls().Call(QStringLiteral("GetAbsoluteNoSerie_Id")).toString();
}

void disableFlowFields(const QString& providers)
{
  sessionCalls().Call(QStringLiteral("DisableFlowFields"), {providers});
}

void enableFlowFields(const QString& providers)
{
  sessionCalls().Call(QStringLiteral("EnableFlowFields"), {providers});
}

}  // namespace kalvor
