#include "forms/windows/base_edit.h"

#include <QApplication>
#include <QKeyEvent>

#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/record_saving.h"
#include "forms/windows/barcode_entry.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/form_server.h"
#include "forms/windows/save_request.h"
#include "common/sql_text.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/error_log.h"

namespace kalvor {

TfBaseEdit::TfBaseEdit(QWidget* parent)
    : TfBase(parent), cdsMaster_(new TClientDataSet(this)), saveRequest_(std::make_unique<SaveRequest>())
{
  cdsMaster_->setObjectName(QStringLiteral("cdsMaster"));
}

TfBaseEdit::~TfBaseEdit() = default;

// --- Records ---------------------------------------------------------------------------------------------------

void TfBaseEdit::acInsertRecordExecute()
{
  TfBase::acInsertRecordExecute();
  if (mayLeaveRecord()) {
    cdsMaster_->Append();
    focusFirstControl();
  }
}

void TfBaseEdit::acEditRecordExecute()
{
  TfBase::acEditRecordExecute();
  if (CheckDataModification(true, false, false) && !cdsMaster_->IsEmpty() && !CheckState()) {
    cdsMaster_->Edit();
  }
}

void TfBaseEdit::acCopyRecordExecute()
{
  TfBase::acCopyRecordExecute();
  execute(QStringLiteral("acCopyNew"));
}

void TfBaseEdit::acCancelExecute()
{
  for (int index = 0; index < dataSetCount(); ++index) {
    TClientDataSet* dataSet = cdsOptions(index).DataSet;
    if (dataSet->Active() && dataSet->IsEditing()) {
      dataSet->Cancel();
    }
  }
  TfBase::acCancelExecute();
}

void TfBaseEdit::acDeleteRecordExecute()
{
  TfBase::acDeleteRecordExecute();
  if (!CheckDataModification(false, true, false)) {
    return;
  }
  if (CheckState()) {
    throw FormRefusal(_err_SaveBeforeDelete);
  }
  if (!cdsMaster_->IsEmpty()) {
    deleteMasterRecord();
  }
}

void TfBaseEdit::deleteMasterRecord()
{
  const WaitCursorScope wait;
  action(QStringLiteral("acDeleteRecord"))->setEnabled(false);
  const TField* idField = cdsMaster_->FindField(u"Id");
  const QString id = idField ? idField->AsString() : QString();
  const bool othersUnsaved = cdsMaster_->ChangeCount() > 0;
  const bool deleted = runGuarded(QStringLiteral("TfBase.acDeleteRecordExecute"), [this] {
    cdsMaster_->Delete();
    const VariantArray packet = buildSavePacket({{cdsMaster_, cdsOptions(0).ProviderName, {}}});
    if (!packet.isEmpty() && !updateClientData(packet, Variant(), CreateUniqueID())) {
      throw SilentAbort();
    }
    cdsMaster_->MergeChangeLog();
  });
  if (!deleted) {
    // The record that the server did not delete is there again; what else is unsaved stays so.
    othersUnsaved ? void(cdsMaster_->UndoLastChange(true)) : cdsMaster_->CancelUpdates();
    cdsMaster_->Locate(QStringLiteral("Id"), id);
  }
  UpdateActionState();
  if (deleted && !showOptions().testFlag(so_ImportData)) {
    acRefreshExecute();
  } else {
    acGetDetailsExecute();
  }
  if (deleted) {
    tellOwnerSaved(id);
  }
}

// --- Closing ---------------------------------------------------------------------------------------------------

bool TfBaseEdit::FormCloseQuery()
{
  const bool unsaved = CheckState() || hasChanges();
  if (!unsaved || !canSave()) {
    return true;
  }
  const PromptButton answer = userPrompt().message(PromptKind::Confirmation, _que_SaveDocumentChanges,
                                                   {PromptButton::Yes, PromptButton::No, PromptButton::Cancel});
  if (answer == PromptButton::Yes) {
    lastSaveSucceeded_ = false;
    execute(QStringLiteral("acSave"));
    return lastSaveSucceeded_ && !hasChanges();
  }
  if (answer == PromptButton::No) {
    return runGuarded(QStringLiteral("TfBase.acCancelExecute"), [this] { acCancelExecute(); });
  }
  return false;
}

// --- Bar codes -------------------------------------------------------------------------------------------------

void TfBaseEdit::BarcodeCallBack(const QString&, double, int) {}

bool TfBaseEdit::FormKeyPress(QChar typed)
{
  if (!DM || typed != DM->BarcodeStart) {
    return false;
  }
  if (!barcodeEntry_) {
    barcodeEntry_ = new BarcodeEntry(
        [this](const QString& code, double quantity, int kind) {
          runGuarded(QStringLiteral("TfBaseEdit.BarcodeCallBack"), [&] { BarcodeCallBack(code, quantity, kind); });
        },
        this);
  }
  barcodeEntry_->start();
  return true;
}

void TfBaseEdit::FormShow()
{
  qApp->installEventFilter(this);
  TfBase::FormShow();
}

// Whatever control has the focus: a scanner types into all of them.
bool TfBaseEdit::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::KeyPress && watched->isWidgetType()) {
    auto* widget = static_cast<QWidget*>(watched);
    const QString typed = static_cast<QKeyEvent*>(event)->text();
    const bool inForm = isAncestorOf(widget) && widget->window() == window();
    if (inForm && typed.size() == 1 && FormKeyPress(typed.at(0))) {
      return true;
    }
  }
  return TfBase::eventFilter(watched, event);
}

// --- Verbs -----------------------------------------------------------------------------------------------------

void TfBaseEdit::DeleteRecord()
{
  execute(QStringLiteral("acDeleteRecord"));
}

void TfBaseEdit::InsertRecord()
{
  execute(QStringLiteral("acInsertRecord"));
}

void TfBaseEdit::EditRecord()
{
  execute(QStringLiteral("acEditRecord"));
}

void TfBaseEdit::CopyRecord()
{
  execute(QStringLiteral("acCopyRecord"));
}

void TfBaseEdit::ImportCDS()
{
  execute(QStringLiteral("acImport"));
}

void TfBaseEdit::SaveDocument()
{
  execute(QStringLiteral("acSave"));
}

}  // namespace kalvor
