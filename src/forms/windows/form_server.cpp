#include "forms/windows/form_server.h"

#include "session/dm.h"

namespace kalvor {

QString FormServer::createProvider() const
{
  VariantArray arguments{QString(), true};
  calls_.Call(QStringLiteral("CreateDynamicProvider"), arguments);
  return arguments.value(0).toString();
}

void FormServer::deleteProvider(const QString& provider) const
{
  calls_.Call(QStringLiteral("DeleteDynamicProvider"), VariantArray{provider});
}

int FormServer::requestData(int formId, int dsIndex, const QString& provider, const FilterArray& filter,
                            const QString& order, const ParameterArray& parameters, VariantArray& descriptions) const
{
  constexpr int descriptionsArgument = 6;
  VariantArray arguments{formId,    dsIndex, provider, filterToVariant(filter), order, parametersToVariant(parameters),
                         Variant(), 0};
  const int result = calls_.Call(QStringLiteral("RequestData"), arguments).toInt();
  descriptions = arguments.value(descriptionsArgument).toList();
  return result;
}

bool FormServer::updateClientData(const VariantArray& packet, const Variant& numbering, const QString& requestId) const
{
  VariantArray arguments{packet, numbering};
  const Variant result = calls_.Call(QStringLiteral("UpdateClientData"), arguments, requestId);
  return !isNull(result) && result.toLongLong() == 0;
}

QString FormServer::absoluteNumberSeries() const
{
  return calls_.Call(QStringLiteral("GetAbsoluteNoSerie_Id")).toString();
}

FormServer formServer()
{
  if (!DM) {
    throw DataError(QStringLiteral("Не е остановена връзка към сървъра"));
  }
  return FormServer(*DM->ConBroker);
}

}  // namespace kalvor
