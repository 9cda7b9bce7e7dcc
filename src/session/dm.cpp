#include "session/dm.h"

#include "common/threads.h"
#include "platform/system.h"
#include "session/error_log.h"
#include "session/server_calls.h"

namespace kalvor {

TDM* DM = nullptr;

namespace {

constexpr int packetOfForms = 32;

QDomDocument* activeDocument(const std::unique_ptr<SettingsXml>& xml)
{
  return xml && xml->active ? &xml->document : nullptr;
}

}  // namespace

TDM::TDM(HostApplication& host, std::unique_ptr<RemoteCalls> broker)
    : host_(host), broker_(broker ? std::move(broker) : std::make_unique<ConnectionBroker>(&SocketCon))
{
  ConBroker = broker_.get();
  SocketCon.trust = &Servers;
  Servers.setBeforeQuestion([this] { showSplash(false); });
  cdsUserSettings.setObjectName(QStringLiteral("cdsUserSettings"));
  cdsTreeView.setObjectName(QStringLiteral("cdsTreeView"));
  if (KalvorClientINIFileName.isEmpty())
    KalvorClientINIFileName = hostProgramName() + QStringLiteral(".ini");
  DM = this;
}

TDM::~TDM()
{
  DataModuleDestroy();
  TExecuteScriptTread::finishScripts();
  if (DM == this)
    DM = nullptr;
}

QDomDocument* TDM::userSettingsDocument() const { return activeDocument(UserSettings); }
QDomDocument* TDM::userActionsDocument() const { return activeDocument(UserActions); }

bool TDM::SetDocCopiesPrinted(const QString& table, const QString& id, const QString& field)
{
  bool done = false;
  loggingErrors(QStringLiteral("DM.SetDocCopiesPrinted"), [&] {
    const QString statement = QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") + field +
                              QStringLiteral(" = ") + field + QStringLiteral(" + 1 WHERE ID = ") + sqlLiteral(id) +
                              QStringLiteral(" AND Comp_Id = ") + sqlLiteral(LocalData.CompanyId);
    done = ConBroker->Call(QStringLiteral("ExecuteSQLScript"), {statement}) == Variant(0);
  });
  return done;
}

TClientDataSet* TDM::CreateCDS(int formId, const FilterArray& filter, bool open)
{
  std::unique_ptr<TClientDataSet> dataSet;
  loggingErrors(QStringLiteral("TDM.CreateCDS"), [&] {
    const QString provider = createDynamicProvider(*ConBroker);
    auto fresh = std::make_unique<TClientDataSet>(this);
    fresh->setObjectName(QStringLiteral("cds") + provider);
    fresh->SetRemoteServer(ConBroker);
    fresh->ProviderName = provider;
    fresh->PacketRecords = packetOfForms;
    fresh->FetchOnDemand = true;
    if (open && formId > 0) {
      if (requestData(*ConBroker, formId, -1, provider, filter, QString(), {}) != 0)
        throw DataError(QStringLiteral("Няма заявка за форма с код : %1").arg(formId));
      fresh->Open();
    }
    dataSet = std::move(fresh);
  });
  return dataSet.release();
}

int TDM::ProccessAplicationParams()
{
  loggingErrors(QStringLiteral("TDM.ProccessAplicationParams"), [&] {
    if (AutoLoginData.Action == QLatin1String("xmlTransfer"))
      DoXmlTransfer(QString());
  });
  return 0;
}

int TDM::DoXmlTransfer(const QString& fileName)
{
  loggingErrors(QStringLiteral("TDM.DoXmlTransfer"), [&] {
    if (!fileName.isEmpty())
      AutoLoginData.TransferFile = fileName;
    if (!XmlTransfer)
      throw DataError(QStringLiteral("Няма модул за импорт на XML трансфер: ") + AutoLoginData.TransferFile);
    XmlTransfer(AutoLoginData.TransferFile);
  });
  return 0;
}

}  // namespace kalvor
