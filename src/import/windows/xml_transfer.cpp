#include "import/windows/xml_transfer.h"

#include <QFileInfo>
#include <QScopedValueRollback>

#include "common/transfer_paths.h"
#include "forms/windows/form_server.h"
#include "import/windows/request_import.h"
#include "platform/system.h"
#include "session/dm.h"
#include "session/import_log.h"
#include "session/server_calls.h"

namespace kalvor {

namespace {

constexpr int transferItemQuery = 216;
constexpr int infoPrefix = 5;     // "Info_"
constexpr int infoExtension = 4;  // ".xml"
constexpr qint8 imported = 1;

enum ItemColumn : int { icFormId, icDataPort, icSchema };

struct TransferItem {
  int rows = 0;
  VariantArray row;  // the first with a schema; empty without one
};

TransferItem findItem(const QString& id)
{
  Variant answer;
  const FilterArray ofRecord{{QStringLiteral("S_TransferList.Id"), QStringLiteral("="), id, QString(), QString()}};
  requestValue(sessionCalls(), transferItemQuery, QString(), QStringLiteral("Form_Id, Dataport, DPSchema"), ofRecord,
               answer, RowsWanted::All);
  TransferItem item;
  for (const Variant& row : answer.toList()) {
    ++item.rows;
    if (item.row.isEmpty() && !row.toList().value(icSchema).toString().trimmed().isEmpty()) {
      item.row = row.toList();
    }
  }
  return item;
}

}  // namespace

QString transferFolder(const QString& infoFileName)
{
  const QString name = QFileInfo(withNativeSeparators(infoFileName)).fileName();
  return hostProgramFolder() + name.mid(infoPrefix).chopped(qMin<qsizetype>(infoExtension, name.mid(infoPrefix).size())) +
         directorySeparator();
}

TImportXMLSet::TImportXMLSet(const TTransferInfo& info) : info_(info)
{
  info_.FileName = info.FileName;  // a copy has none
}

bool TImportXMLSet::ImportTranfer()
{
  const QString folder = transferFolder(info_.FileName);
  bool complete = true;
  QString invalid;
  info_.Validate(invalid);
  if (!invalid.isEmpty()) {
    info_.SetInvalidCheckSum(invalid);
    complete = false;
  } else {
    const QScopedValueRollback<bool> running(DM->ImportRunning);
    ImportInitLog();
    for (int index = 0; index < info_.Count(); ++index) {
      complete = importRecord(info_[index], folder) && complete;
    }
    ImportCloseLog();
  }
  writeOutcome(folder);
  return complete;
}

bool TImportXMLSet::importRecord(TTransferRecord& record, const QString& folder)
{
  try {
    const TransferItem item = findItem(record.Id);
    if (item.rows == 0) {
      record.Error = QStringLiteral("No found Form_Id, Dataport, DPSchema");
      return false;
    }
    if (item.row.isEmpty()) {
      record.Error = QStringLiteral(" All DPSchema is null");
      return false;
    }
    TImportFilter filter(item.row.value(icFormId).toInt());
    filter.LoadImportParams(item.row.value(icDataPort).toString());
    filter.DPSchema = item.row.value(icSchema).toString();
    DM->ImportRunning = true;
    QString error;
    if (!RequestImport(filter.FormId, filter, transferDataFile(folder + QFileInfo(info_.FileName).fileName(), record.FileName), QString(), QString(),
                       error, so_ImportData, true, nullptr)) {
      throw DataError(error);
    }
    record.Status = imported;
    return true;
  } catch (const std::exception& failure) {
    record.Error = errorText(failure);
    LogError(record.Error, QStringLiteral("TImportXMLSet.ImportTranfer"));
    return false;
  }
}

void TImportXMLSet::writeOutcome(const QString& folder)
{
  CreateTransferInfoFile(info_, folder, QFileInfo(info_.FileName).fileName());
  loggingErrors(QStringLiteral("TImportXMLSet.ImportTranfer"), [this] {
    VariantArray name{QFileInfo(info_.FileName).fileName()};
    sessionCalls().Call(QStringLiteral("SetTransferImportResult"), name);
  });
}

void importXmlTransfer(const QString& infoFileName)
{
  TTransferInfo info;
  const bool isFile = QFileInfo(infoFileName).isFile();
  info.FileName = isFile ? QFileInfo(infoFileName).absoluteFilePath()
                         : transferFolder(infoFileName) + QFileInfo(withNativeSeparators(infoFileName)).fileName();
  if (!FillTranferArrayFromFile(info.FileName, info)) {
    throw DataError(QStringLiteral("Файлът с данни за трансфера не може да бъде прочетен: ") + info.FileName);
  }
  TImportXMLSet(info).ImportTranfer();
}

}  // namespace kalvor
