#include <QUuid>

#include "rpc/rpc_error.h"
#include "server/operations/handlers.h"
#include "server/queries/packet_reader.h"

namespace kalvor::server {

namespace {

constexpr int noQuery = -1;  // result of RequestData

[[noreturn]] void refuseProvider(const QString& name)
{
  throw RpcError(RpcError::Refused, QStringLiteral("Няма такъв източник на данни: „%1“.").arg(name.left(64)));
}

// User_id, its spelling kept when it names the session's user: the client computes the owner key from what was typed.
QString sentUser(const ParameterArray& parameters, const Session& session)
{
  for (const NamedValue& parameter : parameters) {
    if (parameter.name.compare(QLatin1StringView("User_id"), Qt::CaseInsensitive) == 0 &&
        variantText(parameter.value).compare(session.userId, Qt::CaseInsensitive) == 0) {
      return variantText(parameter.value);
    }
  }
  return session.userId;
}

// 65_66_5_7: the characters of the user code, the company, the business group.
QString ownerKey(const QString& userId, const Session& session)
{
  QStringList parts;
  for (QChar c : userId) {
    parts.append(QString::number(c.unicode()));
  }
  return (parts << session.companyId << session.groupId).join(u'_');
}

// Parameters that say who asks are those of the session, whatever the client sent.
ParameterArray withSession(ParameterArray parameters, const Session& session, int formId)
{
  const QString user = sentUser(parameters, session);
  ParameterArray own{
      {QStringLiteral("User_Id"), user},
      {QStringLiteral("Comp_Id"), session.companyId},
      {QStringLiteral("Bg_Id"), session.groupId},
      {QStringLiteral("isAdmin"), session.administrator() ? 1 : 0},
      {QStringLiteral("Owner"), ownerKey(user, session)},
  };
  constexpr int settingsQuery = 487;
  if (formId == settingsQuery) {
    own.append({QStringLiteral("ID"), session.userId});
  }
  parameters.removeIf([&](const NamedValue& parameter) {
    return std::any_of(own.begin(), own.end(), [&](const NamedValue& bound) {
      return bound.name.compare(parameter.name, Qt::CaseInsensitive) == 0;
    });
  });
  return parameters + own;
}

VariantArray descriptionRows(const StoredQuery& query)
{
  VariantArray rows;
  for (const FieldRow& row : query.rows) {
    rows.append(Variant(row.values));
  }
  return rows;
}

DataRequest readiedRequest(CallContext& call, const QString& name)
{
  const auto definition = call.core.state().provider(call.session, name);
  if (!definition || definition->isEmpty()) {
    refuseProvider(name);
  }
  return DataRequest::decoded(*definition);
}

}  // namespace

Variant callCreateDynamicProvider(CallContext& call)
{
  const QString name = QStringLiteral("prv") + QUuid::createUuid().toString(QUuid::Id128).left(20);
  if (!call.core.state().createProvider(call.session, name)) {
    throw RpcError(RpcError::Refused, QStringLiteral("Отворени са твърде много форми. Затворете някои от тях."));
  }
  call.arguments[0] = name;
  return name;
}

Variant callDeleteDynamicProvider(CallContext& call)
{
  call.core.state().deleteProvider(call.session, call.text(0));
  return 0;
}

Variant callRequestData(CallContext& call)
{
  const int formId = call.integer(0);
  const int dsIndex = call.integer(1);
  const QString name = call.text(2);
  call.arguments[6] = Variant();
  const StoredQuery* query = call.metadata->query(formId, dsIndex);
  if (!query && dsIndex < 0) {
    query = call.metadata->query(formId, 0);
  }
  if (!query) {
    return noQuery;
  }
  const DataRequest request{formId, dsIndex, query->id, filterFromVariant(call.arguments.at(3)), call.text(4),
                            withSession(parametersFromVariant(call.arguments.at(5)), call.session, formId)};
  checkRequest(call.access(), request);
  if (!call.core.state().setProvider(call.session, name, request.encoded())) {
    refuseProvider(name);
  }
  call.arguments[6] = descriptionRows(*query);
  return 0;
}

Variant callOpenProvider(CallContext& call)
{
  return QVariant::fromValue(readPacket(call.access(), readiedRequest(call, call.text(0)), Variant(), call.integer(1)));
}

Variant callFetchRecords(CallContext& call)
{
  if (isNull(call.arguments.at(1))) {
    throw RpcError(RpcError::BadArguments, QStringLiteral("Няма повече данни за четене."));
  }
  return QVariant::fromValue(
      readPacket(call.access(), readiedRequest(call, call.text(0)), call.arguments.at(1), call.integer(2)));
}

}  // namespace kalvor::server
