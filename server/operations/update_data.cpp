#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/updates/numbering.h"
#include "server/updates/posted_guard.h"
#include "server/updates/row_writer.h"

namespace kalvor::server {

namespace {

[[noreturn]] void refusePacket()
{
  throw RpcError(RpcError::BadArguments, QStringLiteral("Промените не могат да бъдат прочетени."));
}

// [provider, delta] as the table it writes to; the rights of its form are read with it.
UpdateTarget targetOf(CallContext& call, const Variant& pair)
{
  const VariantArray parts = pair.toList();
  const DeltaPtr delta = parts.size() == 2 ? parts.at(1).value<DeltaPtr>() : nullptr;
  if (!delta) {
    refusePacket();
  }
  const auto definition = call.core.state().provider(call.session, variantText(parts.at(0)));
  if (!definition || definition->isEmpty()) {
    throw RpcError(RpcError::Refused, QStringLiteral("Няма такъв източник на данни: „%1“.").arg(variantText(parts.at(0)).left(64)));
  }
  return updateTarget(call.access(), DataRequest::decoded(*definition), delta);
}

void giveNumbers(CallContext& call, const QList<UpdateTarget>& targets, const std::vector<RowWriter>& writers)
{
  for (const NumberingRequest& request : NumberingRequest::listFrom(call.arguments.at(1))) {
    bool given = false;
    for (qsizetype i = 0; !given && i < targets.size(); ++i) {
      const bool wrote = targets.at(i).table->name.compare(request.table, Qt::CaseInsensitive) == 0 &&
                         writers[size_t(i)].writtenKeys().contains(request.recordId);
      if (wrote) {
        giveNumber(call.access(), *targets.at(i).table, request);
        given = true;
      }
    }
    if (!given) {
      throw RpcError(RpcError::Refused, QStringLiteral("Грешка при извличане на данни за генериране на номер."));
    }
  }
}

}  // namespace

Variant callUpdateClientData(CallContext& call)
{
  const Access access = call.access();
  QList<UpdateTarget> targets;
  for (const Variant& pair : call.arguments.at(0).toList()) {
    targets.append(targetOf(call, pair));
  }
  QString posted;
  for (const UpdateTarget& target : std::as_const(targets)) {
    posted = posted.isEmpty() ? postedChange(access, target) : posted;
  }
  QSet<QString> insertedMasters;
  std::vector<RowWriter> writers;
  writers.reserve(size_t(targets.size()));
  for (const UpdateTarget& target : std::as_const(targets)) {
    writers.emplace_back(access, target, insertedMasters);
    writers.back().write();
  }
  giveNumbers(call, targets, writers);
  for (const RowWriter& writer : writers) {
    writer.checkWritten();
  }
  refusePostedChange(posted);
  for (const UpdateTarget& target : std::as_const(targets)) {
    if (MetadataCache::isMetadataTable(target.table->name)) {
      MetadataCache::touch(call.db);
      break;
    }
  }
  return 0;
}

}  // namespace kalvor::server
