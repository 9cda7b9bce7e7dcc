// The rights dataset: one row a form for each user, company and object that worked in this session.
#include "session/dm.h"
#include "session/error_log.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

constexpr int rightsQuery = 103;

const QString errUserData = QStringLiteral("Грешка при извличане на данни за потребителя!");

// The provider is released whatever happens.
class ProviderScope {
 public:
  explicit ProviderScope(RemoteCalls& calls) : calls_(calls), name_(createDynamicProvider(calls)) {}
  ~ProviderScope()
  {
    loggingErrors(QStringLiteral("DM.LoadLogInData"), [this] { deleteDynamicProvider(calls_, name_); });
  }
  ProviderScope(const ProviderScope&) = delete;
  ProviderScope& operator=(const ProviderScope&) = delete;
  const QString& name() const { return name_; }

 private:
  RemoteCalls& calls_;
  QString name_;
};

void appendRightsRows(TClientDataSet& target, TClientDataSet& source)
{
  const ControlsDisabledScope quiet(&target);
  for (source.First(); !source.Eof(); source.Next()) {
    target.Append();
    for (int i = 0; i < qMin(source.FieldCount(), target.FieldCount()); ++i) {
      target.Field(i)->ReadOnly = false;
      target.Field(i)->SetValue(source.Field(i)->Value());
    }
    target.Post();
  }
}

}  // namespace

// Codes of the user's characters, company and object, joined by "_": user AB of company 5, object 7 is 65_66_5_7.
QString TDM::ownerKey() const
{
  QStringList parts;
  for (const QChar c : LocalData.UserId)
    parts.append(QString::number(c.unicode()));
  return parts.join(u'_') + u'_' + LocalData.CompanyId + u'_' + LocalData.BGroupId;
}

void TDM::LoadLogInData(const QString&)
{
  loggingErrors(QStringLiteral("DM.LoadLogInData"), [&] {
    const QString ofOwner = QStringLiteral("Owner=") + sqlLiteral(ownerKey());
    if (cdsTreeView.Active()) {
      cdsTreeView.SetFilter(ofOwner);
      cdsTreeView.SetFiltered(true);
      if (!cdsTreeView.IsEmpty())
        return;
      cdsTreeView.SetFiltered(false);
      cdsTreeView.SetFilter(QString());
    }
    fetchRights(ofOwner);
  });
}

void TDM::fetchRights(const QString& ofOwner)
{
  TClientDataSet fetched;
  const ProviderScope provider(*ConBroker);
  const ParameterArray parameters{{QStringLiteral("Comp_Id"), LocalData.CompanyId},
                                  {QStringLiteral("Bg_Id"), LocalData.BGroupId},
                                  {QStringLiteral("User_id"), LocalData.UserId},
                                  {QStringLiteral("isAdmin"), LocalData.UserId == administratorCode ? 1 : 0}};
  if (requestData(*ConBroker, rightsQuery, 0, provider.name(), {}, QString(), parameters) < 0)
    throw DataError(errUserData);
  TClientDataSet& opened = cdsTreeView.Active() ? fetched : cdsTreeView;
  opened.SetRemoteServer(ConBroker);
  opened.ProviderName = provider.name();
  opened.PacketRecords = -1;
  const bool complete = loggingErrors(QStringLiteral("DM.LoadLogInData"), [&] {
    opened.Open();
    if (&opened == &fetched) {
      appendRightsRows(cdsTreeView, fetched);
      cdsTreeView.MergeChangeLog();
      cdsTreeView.SetFilter(ofOwner);
      cdsTreeView.SetFiltered(true);
    }
  });
  if (!complete && cdsTreeView.Active())
    cdsTreeView.CancelUpdates();  // half of somebody's rights are none
  cdsTreeView.ProviderName.clear();
}

}  // namespace kalvor
