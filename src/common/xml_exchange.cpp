#include "common/xml_exchange.h"

#include "common/messages.h"
#include "common/save_file_question.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"

namespace kalvor {

namespace {

const QString packetPattern = QStringLiteral("XML Files (*.xml)");
const QString packetImportContext = QStringLiteral("CommonUtils.ImportFromXML");
constexpr QStringView packetKey = u"ID";
constexpr QStringView packetStatements = u"ADDITIONALDATA";

class ServerError : public DataError {
 public:
  using DataError::DataError;
};

RemoteCalls& serverOf(const TClientDataSet& dataSet)
{
  if (auto* calls = dynamic_cast<RemoteCalls*>(dataSet.RemoteServer()))
    return *calls;
  if (DM)
    return *DM->ConBroker;
  throw ServerError(QStringLiteral("Няма връзка със сървъра"));
}

// One transaction of the server; without commit() it is rolled back.
class ServerTransaction {
 public:
  explicit ServerTransaction(RemoteCalls& calls) : calls_(calls)
  {
    calls_.Call(QStringLiteral("trStart"));
    open_ = true;
  }
  ~ServerTransaction()
  {
    if (open_)
      loggingErrors(packetImportContext, [this] { calls_.Call(QStringLiteral("trRollback")); });
  }
  void commit()
  {
    calls_.Call(QStringLiteral("trCommit"));
    open_ = false;
  }
  ServerTransaction(const ServerTransaction&) = delete;
  ServerTransaction& operator=(const ServerTransaction&) = delete;

 private:
  RemoteCalls& calls_;
  bool open_ = false;
};

// The record that the packet's current record goes to becomes current and editable.
void editMatchingRecord(TClientDataSet& target, const TClientDataSet& packet)
{
  const TField* id = packet.FindField(packetKey);
  const bool byId = id && target.FindField(packetKey);
  if (byId && !target.Locate(packetKey.toString(), id->Value()))
    target.Append();
  else
    target.Edit();
}

void copyRecord(TClientDataSet& target, const TClientDataSet& packet)
{
  for (const TField* source : packet.Fields()) {
    TField* field = target.FindField(source->FieldName());
    if (!field && source->FieldName().compare(packetStatements, Qt::CaseInsensitive) == 0)
      continue;
    if (!field)
      throw DataError(QStringLiteral("Полето '%1' от файла липсва в данните").arg(source->FieldName()));
    const Variant value = source->Value();
    if (!field->ReadOnly || value != field->Value())
      field->SetValue(value);
  }
}

void copyRecords(TClientDataSet& target, TClientDataSet& packet)
{
  const ControlsDisabledScope quiet(&target);
  try {
    for (packet.First(); !packet.Eof(); packet.Next()) {
      editMatchingRecord(target, packet);
      copyRecord(target, packet);
      target.Post();
    }
  } catch (...) {
    target.Cancel();
    throw;
  }
}

void applyChanges(TClientDataSet& target)
{
  RemoteCalls& calls = serverOf(target);
  ServerTransaction transaction(calls);
  if (const DeltaPtr delta = target.GetDelta()) {
    const VariantArray pair{target.ProviderName, QVariant::fromValue(delta)};
    const Variant answer = calls.Call(QStringLiteral("UpdateClientData"), VariantArray{VariantArray{QVariant(pair)}, Variant()});
    if (answer.toInt() != 0)
      throw ServerError(QStringLiteral("UpdateClientData: %1").arg(answer.toInt()));
  }
  transaction.commit();
  target.MergeChangeLog();
}

void runStatements(const TClientDataSet& target, TClientDataSet& packet)
{
  const TField* statements = packet.FindField(packetStatements);
  if (!statements)
    return;
  for (packet.First(); !packet.Eof(); packet.Next()) {
    if (statements->AsString().trimmed().isEmpty())
      continue;
    loggingErrors(packetImportContext, [&] {
      RemoteCalls& calls = serverOf(target);
      ServerTransaction transaction(calls);
      const int answer = calls.Call(QStringLiteral("ExecMultySQL"), VariantArray{statements->AsString()}).toInt();
      if (answer != 0)
        throw ServerError(QStringLiteral("ExecMultySQL: %1").arg(answer));
      transaction.commit();
    });
  }
}

// True when the body came through; else its error is in the log and shown, as itself or as the given message.
bool toldToUser(const QString& context, const std::function<void()>& body, const QString& message = {})
{
  try {
    body();
    return true;
  } catch (const std::exception& error) {
    LogError(errorText(error), context);
    showError(message.isEmpty() ? errorText(error) : message);
    return false;
  }
}

}  // namespace

bool ExportToXML(TClientDataSet* dataSet)
{
  const QString fileName = askSaveFile(_inf_EnterFileName, packetPattern, QStringLiteral("xml"));
  if (fileName.isEmpty())
    return false;
  const bool saved = toldToUser(QStringLiteral("CommonUtils.ExportToXML"), [&] {
    const WaitCursorScope wait;
    dataSet->FetchAll();
    dataSet->SaveToFile(fileName);
  });
  if (saved)
    showInformation(_inf_DataSaved);
  return saved;
}

bool ImportFromXML(TClientDataSet* dataSet, const QString& fileName, bool showMessage)
{
  const QString name =
      fileName.isEmpty() ? userPrompt().chooseFile(_inf_EnterFileName, packetPattern, false) : fileName;
  if (name.isEmpty())
    return false;
  TClientDataSet packet;
  const auto takeOver = [&] {
    const WaitCursorScope wait;
    packet.LoadFromFile(name);
    dataSet->FetchAll();
    copyRecords(*dataSet, packet);
  };
  if (!toldToUser(packetImportContext, takeOver) ||
      !toldToUser(packetImportContext, [&] { applyChanges(*dataSet); }, _err_SaveData))
    return false;
  runStatements(*dataSet, packet);
  if (showMessage)
    showInformation(_inf_DataSaved);
  return true;
}

}  // namespace kalvor
