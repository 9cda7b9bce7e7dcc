// What the session loads after the log-in.
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/local_settings_file.h"
#include "session/server_calls.h"
#include "session/settings_document.h"

namespace kalvor {
namespace {

constexpr int settingsQuery = 487;

const QString errUserSettings = QStringLiteral("Грешка при извличане на настройки за потребителя!");
const QString errSettingsRow = QStringLiteral("Не е намерен запис в базата или е намерен повече от един!");
const QString employeeStatement = QStringLiteral(
    "SELECT N_Users.Id AS N_Users_Id, N_Users.Employee_Id AS N_Users_Employee_Id, "
    "N_Employee.Name AS N_Employee_Name,  N_Company.Name AS N_Company_Name FROM N_Users  "
    "INNER JOIN N_Employee ON N_Employee.ID = N_Users.Employee_Id AND N_Employee.Comp_id = N_Users.Comp_id "
    "INNER JOIN N_Company ON N_Company.Id = N_Users.Comp_id");

FilterRow conditionOn(const QString& field, const QString& value, const QString& conjunction = {})
{
  return {field, QStringLiteral("="), value, conjunction, QString()};
}

// The one value asked for, whether it came alone or as a row of one.
Variant firstOfRow(const Variant& value)
{
  return value.typeId() == QMetaType::QVariantList ? value.toList().value(0) : value;
}

void activateXml(std::unique_ptr<SettingsXml>& xml, const QString& text)
{
  if (!xml)
    xml = std::make_unique<SettingsXml>();
  xml->active = false;
  if (!loadSettingsDocument(xml->document, text))
    throw DataError(errUserSettings);
  xml->active = true;
}

}  // namespace

void TDM::LoadCompanySettings()
{
  loggingErrors(QStringLiteral("TDM.LoadCompanySettings"), [&] {
    Variant rows;
    const int found =
        requestValue(*ConBroker, TableColumns, QStringLiteral("C_CompanySetup"),
                     QStringLiteral("CheckBulstat,CheckTaxNo,PrecisionAmount,PrecisionPrice,Currency_LCY"),
                     {conditionOn(QStringLiteral("Id"), LocalData.CompanyId)}, rows, RowsWanted::All);
    if (found <= 0)
      return;
    const VariantArray row = rows.toList().value(0).toList();
    if (row.size() < 5)
      throw DataError(QStringLiteral("Непълни настройки на фирмата."));
    LocalData.CheckBulstat = quint8(row[0].toInt());
    LocalData.CheckTaxNo = quint8(row[1].toInt());
    LocalData.PrecisionAmount = quint8(row[2].toInt());
    LocalData.PrecisionPrice = quint8(row[3].toInt());
    LocalData.Currency_LCY = variantText(row[4]);
  });
}

void TDM::LoadLocalData(const QString& userName, const QString& businessGroupName, const QString& companyName,
                        const QString& userId, const QString& businessGroupId, const QString& companyId)
{
  loggingErrors(QStringLiteral("TDM.LoadLocalData"), [&] {
    LocalData.UserId = userId;
    LocalData.BGroupId = businessGroupId;
    LocalData.CompanyId = companyId;
    LocalData.UserName = userName;
    LocalData.BGroupName = businessGroupName;
    LocalData.CompanyName = companyName;
    LocalData.ServerName = variantText(ConBroker->Call(QStringLiteral("servername")));
    LocalData.LoginTime = systemClock().now();
    LocalData.ConnectionString = variantText(ConBroker->Call(QStringLiteral("GetConnectionString")));
    LoadCompanySettings();
    QStringList devices;
    GetSectionFromIni(QStringLiteral("Devices"), devices);
    LocalData.FPName = valueOfLine(devices, QStringLiteral("FPName"));
    LocalData.FPType = valueOfLine(devices, QStringLiteral("FPType"));
    loadEmployeeName();
    loadSalesSetup();
    loadUserSettings();
  });
}

void TDM::loadEmployeeName()
{
  Variant row;
  const FilterArray filter{conditionOn(QStringLiteral("N_Users.Id"), LocalData.UserId, QStringLiteral("AND")),
                           conditionOn(QStringLiteral("N_Users.Comp_id"), LocalData.CompanyId)};
  if (requestValue(*ConBroker, WholeStatement, employeeStatement, QString(), filter, row, RowsWanted::First) > 0)
    LocalData.EmployeeName = variantText(row.toList().value(2));
}

void TDM::loadSalesSetup()
{
  Variant value;
  const int found = requestValue(*ConBroker, TableColumns, QStringLiteral("C_SalesSetup"),
                                 QStringLiteral("ChangeCalculation"),
                                 {conditionOn(QStringLiteral("C_SalesSetup.Id"), LocalData.CompanyId)}, value,
                                 RowsWanted::First);
  if (found > 0)
    LocalData.ChangeCalculation = firstOfRow(value).toInt() == 1;
}

void TDM::loadUserSettings()
{
  if (!UserSettings)
    UserSettings = std::make_unique<SettingsXml>();
  bool loaded = false;
  if (cdsUserSettings.Active())
    loaded = cdsUserSettings.Locate(QStringLiteral("Id"), LocalData.UserId);
  else
    loaded = requestUserSettings();
  if (!loaded)
    appendUserSettings();
  activateXml(UserSettings, cdsUserSettings.FieldByName(u"Settings")->AsString());
  activateXml(UserActions, cdsUserSettings.FieldByName(u"UserActions")->AsString());
}

bool TDM::requestUserSettings()
{
  cdsUserSettings.SetRemoteServer(ConBroker);
  cdsUserSettings.ProviderName = createDynamicProvider(*ConBroker);
  cdsUserSettings.PacketRecords = -1;
  const ParameterArray parameters{{QStringLiteral("ID"), LocalData.UserId},
                                  {QStringLiteral("Comp_ID"), LocalData.CompanyId}};
  if (requestData(*ConBroker, settingsQuery, -1, cdsUserSettings.ProviderName, {}, QString(), parameters) != 0)
    throw DataError(errUserSettings);
  cdsUserSettings.Open();
  TField* actions = cdsUserSettings.FieldByName(u"UserActions");
  actions->InUpdate = actions->InWhere = actions->InKey = false;
  if (cdsUserSettings.RecordCount() != 1)
    throw DataError(errUserSettings + QStringLiteral("\n\r") + errSettingsRow);
  return true;
}

void TDM::appendUserSettings()
{
  Variant row;
  const QString statement = QStringLiteral("exec dbo.usp_GetUserSettings ") + sqlLiteral(LocalData.UserId) +
                            QStringLiteral(", ") + sqlLiteral(LocalData.CompanyId);
  if (requestValue(*ConBroker, WholeStatement, statement, QString(), {}, row, RowsWanted::First) <= 0)
    throw DataError(errUserSettings);
  const VariantArray cells = row.toList();
  cdsUserSettings.Append();
  cdsUserSettings.FieldByName(u"ID")->SetValue(LocalData.UserId);
  cdsUserSettings.FieldByName(u"Comp_id")->SetValue(LocalData.CompanyId);
  cdsUserSettings.FieldByName(u"Settings")->SetValue(variantText(cells.value(2)));
  cdsUserSettings.FieldByName(u"UserActions")->SetValue(variantText(cells.value(3)));
  cdsUserSettings.Post();
}

}  // namespace kalvor
