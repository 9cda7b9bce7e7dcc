// What the session gives back to the server when it ends.
#include "common/threads.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

QString settingsXmlText(const QDomDocument& document)
{
  return document.toString(-1);
}

QString joinedPieces(std::initializer_list<QString> pieces)
{
  return QStringList(pieces).join(QString());
}

}  // namespace

int TDM::UserLogOff()
{
  loggingErrors(QStringLiteral("TDM.UserLogOff"), [&] {
    const QDomDocument* document = userSettingsDocument();
    if (!document || !cdsUserSettings.Active() || cdsUserSettings.IsEmpty())
      return;
    cdsUserSettings.Edit();
    cdsUserSettings.FieldByName(u"Settings")->SetValue(settingsXmlText(*document));
    cdsUserSettings.Post();
  });
  return 0;
}

QString TDM::GetUserDataForUpdate() const
{
  const QDomDocument* document = userSettingsDocument();
  if (!document)
    return {};
  const QString user = sqlLiteral(LocalData.UserId);
  const QString company = sqlLiteral(LocalData.CompanyId);
  const QString group = sqlLiteral(LocalData.BGroupId);
  const QString day = sqlLiteral(systemClock().today().toString(QStringLiteral("yyyyMMdd")));
  const QString xml = sqlLiteral(settingsXmlText(*document));
  return joinedPieces({QStringLiteral("IF Exists (Select Id from s_UserSettings where Id = "), user,
                 QStringLiteral(" and Comp_Id = "), company, QStringLiteral(")"),
                 QStringLiteral("Update s_UserSettings Set settings = "), xml, QStringLiteral(",C_dateTime="), day,
                 QStringLiteral(", C_Businessgroup_Id="), group, QStringLiteral(", C_User_Id="), user,
                 QStringLiteral("where Id = "), user, QStringLiteral(" and Comp_Id = "), company,
                 QStringLiteral("ELSE insert into s_UserSettings values ("), user, QStringLiteral(","), company,
                 QStringLiteral(","), xml, QStringLiteral(","), group, QStringLiteral(","), user, QStringLiteral(","),
                 day, QStringLiteral(")")});
}

void TDM::DataModuleDestroy()
{
  if (destroyed_)
    return;
  destroyed_ = true;
  FormList.reset();
  TExecuteScriptTread::finishScripts();
  UserSettings.reset();
  loggingErrors(QStringLiteral("TDM.DataModuleDestroy"), [&] {
    if (!cdsUserSettings.Active() || cdsUserSettings.ChangeCount() == 0 || !cdsUserSettings.GetDelta())
      return;
    VariantArray settings;
    QStringList ids;
    const TField* text = cdsUserSettings.FieldByName(u"Settings");
    const TField* id = cdsUserSettings.FieldByName(u"ID");
    for (qsizetype row = 0; row < cdsUserSettings.RecordCount(); ++row) {
      settings.append(variantText(text->ValueAt(row)));
      ids.append(sqlLiteral(variantText(id->ValueAt(row))));
    }
    const Variant result = ConBroker->Call(QStringLiteral("UpdateUserSettings"), {settings, ids.join(u',')});
    if (isNull(result) || result.toInt() != 0)
      throw DataError(QStringLiteral("Error applying user settings"));
  });
}

}  // namespace kalvor
