#include "server/queries/data_request.h"

#include "rpc/frame.h"
#include "rpc/rpc_error.h"

namespace kalvor::server {

QByteArray DataRequest::encoded() const
{
  return encodeValue(VariantArray{formId, dsIndex, queryId, filterToVariant(filter), order, parametersToVariant(parameters)});
}

DataRequest DataRequest::decoded(const QByteArray& bytes)
{
  const auto value = decodeValue(bytes, FrameLimits::ofServer());
  const VariantArray items = value ? value->toList() : VariantArray();
  if (items.size() != 6) {
    throw RpcError(RpcError::Internal, QStringLiteral("Подготвената заявка не може да бъде прочетена."));
  }
  return {items[0].toInt(), items[1].toInt(), items[2].toInt(), filterFromVariant(items[3]), items[4].toString(),
          parametersFromVariant(items[5])};
}

}  // namespace kalvor::server
