#include "session/server_calls.h"

namespace kalvor {

QString sqlLiteral(const QString& text)
{
  QString doubled = text;
  doubled.replace(u'\'', QLatin1String("''"));
  return u'\'' + doubled + u'\'';
}

QString createDynamicProvider(RemoteCalls& calls)
{
  VariantArray arguments{QString(), true};
  calls.Call(QStringLiteral("CreateDynamicProvider"), arguments);
  return arguments[0].toString();
}

void deleteDynamicProvider(RemoteCalls& calls, const QString& provider)
{
  calls.Call(QStringLiteral("DeleteDynamicProvider"), {provider});
}

int requestData(RemoteCalls& calls, int formId, int dsIndex, const QString& provider, const FilterArray& filter,
                const QString& order, const ParameterArray& parameters, VariantArray* descriptions)
{
  VariantArray arguments{formId, dsIndex, provider, filterToVariant(filter), order,
                         parametersToVariant(parameters), Variant(), 0};
  const int result = calls.Call(QStringLiteral("RequestData"), arguments).toInt();
  if (descriptions)
    *descriptions = arguments[6].toList();
  return result;
}

int requestValue(RemoteCalls& calls, int mode, const QString& source, const QString& columns,
                 const FilterArray& filter, Variant& value, RowsWanted rows)
{
  VariantArray arguments{mode, source, columns, filterToVariant(filter), value, rows == RowsWanted::All};
  const int found = calls.Call(QStringLiteral("RequestValue"), arguments).toInt();
  value = arguments[4];
  return found;
}

}  // namespace kalvor
