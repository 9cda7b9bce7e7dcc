// Saving all datasets of an edit form in one call.
#include "forms/form_filters.h"
#include "forms/record_saving.h"
#include "forms/windows/base_edit.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/form_server.h"
#include "forms/windows/save_request.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {

namespace {

// No control of a form follows its datasets while this lives.
class AllControlsDisabled {
 public:
  explicit AllControlsDisabled(const QList<SaveDataSet>& dataSets)
  {
    for (const SaveDataSet& item : dataSets) {
      scopes_.push_back(std::make_unique<ControlsDisabledScope>(item.dataSet));
    }
  }

 private:
  std::vector<std::unique_ptr<ControlsDisabledScope>> scopes_;
};

// A line that was begun and not typed into is none.
void dropUntouchedLines(const QList<SaveDataSet>& dataSets)
{
  for (qsizetype i = 1; i < dataSets.size(); ++i) {
    TClientDataSet* detail = dataSets[i].dataSet;
    if (detail->Active() && detail->State() == DataSetState::Insert && !detail->Modified()) {
      detail->Cancel();
    }
  }
}

// The field that an error text speaks of, by its caption; the longest one when several fit.
TField* fieldNamedIn(const QString& text, const QList<SaveDataSet>& dataSets)
{
  TField* named = nullptr;
  for (const SaveDataSet& item : dataSets) {
    for (TField* field : item.dataSet->Fields()) {
      const bool fits = field->Visible && field->DisplayLabel.size() > 1 && text.contains(field->DisplayLabel);
      if (fits && (!named || field->DisplayLabel.size() > named->DisplayLabel.size())) {
        named = field;
      }
    }
  }
  return named;
}

}  // namespace

void TfBaseEdit::OnSaveBeforeGetData() {}

Variant TfBaseEdit::GetOwnerData()
{
  return kalvor::GetOwnerData(saveDataSets(), [] { return absoluteNumberSeries(); });
}

QList<SaveDataSet> TfBaseEdit::saveDataSets() const
{
  QList<SaveDataSet> dataSets;
  for (int index = 0; index < dataSetCount(); ++index) {
    const TCDSOptions& entry = cdsOptions(index);
    if (entry.DataSet->Active()) {
      dataSets.append({entry.DataSet, entry.ProviderName, seriesFields(entry.DataSet)});
    }
  }
  return dataSets;
}

void TfBaseEdit::acSaveExecute()
{
  lastSaveSucceeded_ = false;
  const QList<SaveDataSet> dataSets = saveDataSets();
  const bool wasEditing = CheckState();
  QString savedId;
  QList<RecordPosition> positions;
  bool sent = false;
  action(QStringLiteral("acSave"))->setEnabled(false);
  try {
    const WaitCursorScope wait;
    commitFocusedControl(this);
    const AllControlsDisabled quiet(dataSets);
    dropUntouchedLines(dataSets);
    positions = rememberPositions(dataSets);
    savedId = variantText(postAndStamp(dataSets, LocalData));
    sent = sendChanges(dataSets);
  } catch (const DataError& error) {
    returnToEdit(wasEditing, savedId);
    UpdateActionState();
    if (TField* field = fieldNamedIn(error.message(), dataSets)) {
      focusControlOf(this, field);
    }
    throw;
  }
  if (!sent) {
    returnToEdit(wasEditing, savedId);
    UpdateActionState();
    return;
  }
  lastSaveSucceeded_ = true;
  finishSave(dataSets, positions, savedId);
}

bool TfBaseEdit::sendChanges(const QList<SaveDataSet>& dataSets)
{
  const VariantArray packet = buildSavePacket(dataSets);
  if (packet.isEmpty()) {
    return true;
  }
  const Variant numbering = GetOwnerData();
  const QString requestId = saveRequest_->idFor(packet);
  bool taken = false;
  try {
    taken = updateClientData(packet, numbering, requestId);
  } catch (const RpcError& error) {
    if (!error.mayHaveRun()) {
      saveRequest_->answered();
    }
    throw;
  }
  saveRequest_->answered();
  return taken;
}

void TfBaseEdit::finishSave(const QList<SaveDataSet>& dataSets, const QList<RecordPosition>& positions,
                            const QString& savedId)
{
  const bool changed = hasChanges();
  runGuarded(QStringLiteral("TfBase.acSaveExecute"), [&] {
    const WaitCursorScope wait;
    const AllControlsDisabled quiet(dataSets);
    OnSaveBeforeGetData();
    discardChangeLogs(dataSets);
    if (changed && !savedId.isEmpty() && !showOptions().testFlag(so_ImportData)) {
      readMasterAnew(savedId);
    }
    if (!isImporting()) {
      restorePositions(positions);
    }
  });
  UpdateActionState();
  tellOwnerSaved(savedId);
}

void TfBaseEdit::readMasterAnew(const QString& savedId)
{
  const FilterArray saved = recordFilter(QStringLiteral("ID"), savedId);
  if (showOptions().testFlag(so_NewRecord)) {
    // The form was opened on no record; from now on it is the card of this one.
    becomeCardOf(saved);
  }
  const FilterArray filter = showOptions().testFlag(so_SingleRecordView) ? saved : requestFilter();
  if (RequestDataSet(0, filter, sortOrder())) {
    cdsMaster_->Refresh();
  }
}

void TfBaseEdit::returnToEdit(bool wasEditing, const QString& savedId)
{
  if (!wasEditing || savedId.isEmpty() || CheckState()) {
    return;
  }
  loggingErrors(QStringLiteral("TfBase.acSaveExecute"), [&] {
    if (cdsMaster_->Locate(QStringLiteral("Id"), savedId)) {
      cdsMaster_->Edit();
    }
  });
}

}  // namespace kalvor
