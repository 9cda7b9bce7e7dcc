#include "rpc/remote_calls.h"

namespace kalvor {
namespace {

DataPacketPtr packetOf(const Variant& answer)
{
  if (auto packet = answer.value<DataPacketPtr>())
    return packet;
  throw RpcError(RpcError::BadFrame, QStringLiteral("Сървърът не върна записи."));
}

}  // namespace

RemoteCalls::~RemoteCalls() = default;

DataPacketPtr RemoteCalls::openProvider(const QString& provider, qsizetype count)
{
  return packetOf(Call(QStringLiteral("OpenProvider"), {provider, qlonglong(count)}));
}

DataPacketPtr RemoteCalls::fetchRecords(const QString& provider, const Variant& continuation, qsizetype count)
{
  return packetOf(Call(QStringLiteral("FetchRecords"), {provider, continuation, qlonglong(count)}));
}

}  // namespace kalvor
