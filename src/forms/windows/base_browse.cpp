#include "forms/windows/base_browse.h"

#include <QMenu>
#include <QVBoxLayout>

#include "forms/form_filters.h"
#include "forms/form_rights.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_server.h"
#include "forms/windows/grid_totals.h"
#include "common/sql_text.h"
#include "platform/ports.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_host.h"
#include "registry/windows/form_registry.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

namespace {

constexpr QSize listSize(960, 520);

// What a caller asked a record for.
Variant requestedValue(const TFieldSet& request, const TClientDataSet& dataSet, const QString& baseTable)
{
  if (request.FieldName == QLatin1String("#TABLENAME#")) {
    return baseTable;
  }
  const TField* field = dataSet.FindField(request.FieldName);
  return field ? field->Value() : Variant();
}

}  // namespace

TfBaseBrowse::TfBaseBrowse(QWidget* parent)
    : TfBase(parent), cdsMaster_(new TClientDataSet(this)), dbgMaster_(new TDBGridEx(this))
{
  cdsMaster_->setObjectName(QStringLiteral("cdsMaster"));
  dbgMaster_->setObjectName(QStringLiteral("dbgMaster"));
  dbgMaster_->setDataSet(cdsMaster_);
  dbgMaster_->setFrameShape(QFrame::NoFrame);
  dbgMaster_->setMultiSelect(true);
  dbgMaster_->setReadOnly(true);
  dbgMaster_->setAccessibleName(QStringLiteral("Списък"));
  resize(listSize);
}

void TfBaseBrowse::buildLayout()
{
  if (layout()) {
    return;
  }
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(dbgMaster_);
  new GridTotals(dbgMaster_);
}

bool TfBaseBrowse::CheckDataModification(bool edit, bool remove, bool insert)
{
  const ShowOption options = showOptions();
  return (!edit || options.testFlag(so_AllowEdit)) && (!remove || options.testFlag(so_AllowDelete)) &&
         (!insert || options.testFlag(so_AllowInsert));
}

// --- Card ------------------------------------------------------------------------------------------------------

FilterArray TfBaseBrowse::currentRecordFilter() const
{
  const TField* id = cdsMaster_->FindField(u"ID");
  return recordFilter(QStringLiteral("ID"), id ? id->Value() : Variant());
}

void TfBaseBrowse::openCard(ShowOption options, const FilterArray& filter)
{
  RequestForm(formId() + 1, options, filter, this);
}

void TfBaseBrowse::ImportCDS()
{
  if (runGuarded(QStringLiteral("TfBase.acImportExecute"), [this] { acImportExecute(); })) {
    openCard(so_StartImport, noRowFilter());
    execute(QStringLiteral("acRefresh"));
  }
}

void TfBaseBrowse::acInsertRecordExecute()
{
  TfBase::acInsertRecordExecute();
  if (cdsMaster_->FindField(u"Id")) {
    openCard(so_NewRecord, noRowFilter());
  }
}

void TfBaseBrowse::acEditRecordExecute()
{
  TfBase::acEditRecordExecute();
  if (cdsMaster_->FindField(u"ID") && !cdsMaster_->IsEmpty()) {
    openCard(showOptions().testFlag(so_SelectSingle) ? so_SelectEdit : so_EditRecord, currentRecordFilter());
  }
}

// The card saved or deleted: the list shows it and stands on it.
void TfBaseBrowse::SelectorFormSaved(QObject*, const QString& recordId)
{
  runGuarded(QStringLiteral("TfBaseBrowse.SelectorFormSaved"), [&] {
    if (!cdsMaster_->Active() || hasChanges()) {
      return;
    }
    {
      const ControlsDisabledScope quiet(cdsMaster_);
      cdsMaster_->Refresh();
      if (!recordId.isEmpty() && cdsMaster_->FindField(u"Id")) {
        cdsMaster_->Locate(QStringLiteral("Id"), recordId);
      }
    }
    UpdateActionState();
  });
}

// --- Rows ------------------------------------------------------------------------------------------------------

bool TfBaseBrowse::markedOrCurrentRows(const std::function<void()>& visit)
{
  if (cdsMaster_->IsEmpty()) {
    return false;
  }
  if (!dbgMaster_->hasMarks()) {
    visit();
    return true;
  }
  const QList<Bookmark> marked = dbgMaster_->markedRecords();
  const ControlsDisabledScope quiet(cdsMaster_);
  for (const Bookmark record : marked) {
    if (cdsMaster_->GotoBookmark(record)) {
      visit();
    }
  }
  return !marked.isEmpty();
}

void TfBaseBrowse::acDeleteRecordExecute()
{
  TfBase::acDeleteRecordExecute();
  if (!CheckDataModification(false, true, false)) {
    return;
  }
  const WaitCursorScope wait;
  if (!markedOrCurrentRows([this] { cdsMaster_->Delete(); })) {
    return;
  }
  dbgMaster_->clearMarks();
  try {
    const VariantArray packet{VariantArray{cdsOptions(0).ProviderName, QVariant::fromValue(cdsMaster_->GetDelta())}};
    if (updateClientData(packet, Variant(), CreateUniqueID())) {
      cdsMaster_->MergeChangeLog();
    } else {
      cdsMaster_->CancelUpdates();
    }
  } catch (...) {
    // What the server did not delete stands in the list again.
    cdsMaster_->CancelUpdates();
    UpdateActionState();
    throw;
  }
  UpdateActionState();
  dbgMaster_->viewport()->update();
  dbgMaster_->setFocus();
}

void TfBaseBrowse::acSelectExecute()
{
  if (!inSelectionMode() || showOptions().testFlag(so_CannotSelect)) {
    return;
  }
  const TFormData* description = GetFromDataObject(QString::number(formId()), 0);
  const QString table = description ? description->BaseTable : QString();
  const TRecordLine requested = selection().value(0);
  TSelectionList chosen;
  const auto take = [&] {
    TRecordLine line = requested;
    for (TFieldSet& request : line) {
      request.Value = requestedValue(request, *cdsMaster_, table);
    }
    chosen.append(line);
  };
  const bool several = showOptions().testFlag(so_SelectMulty);
  if (several ? !markedOrCurrentRows(take) : cdsMaster_->IsEmpty()) {
    return;
  }
  if (!several) {
    take();
  }
  selection() = chosen;
  if (auto* owner = dynamic_cast<ISelectorOwnerIntf*>(formOwner())) {
    owner->ProcessSelectedRecords(chosen, showOptions());
  }
  closeWith(1);
}

void TfBaseBrowse::gridDoubleClicked(TDBGrid* grid)
{
  if (inSelectionMode()) {
    TfBase::gridDoubleClicked(grid);
  } else {
    execute(QStringLiteral("acEditRecord"));
  }
}

// --- Verbs -----------------------------------------------------------------------------------------------------

void TfBaseBrowse::DeleteRecord()
{
  execute(QStringLiteral("acDeleteRecord"));
}

void TfBaseBrowse::InsertRecord()
{
  execute(QStringLiteral("acInsertRecord"));
}

void TfBaseBrowse::EditRecord()
{
  execute(QStringLiteral("acEditRecord"));
}

// --- Card lists ------------------------------------------------------------------------------------------------

TfBaseBrowseCard::TfBaseBrowseCard(QWidget* parent) : TfBaseBrowse(parent)
{
  addNamedAction(QStringLiteral("acShowCard"), QStringLiteral("Карта"), QKeySequence(QStringLiteral("Ctrl+Return")),
                 [this] { acShowCardExecute(); });
  gridMenu()->addAction(action(QStringLiteral("acShowCard")));
}

void TfBaseBrowseCard::acInsertRecordExecute()
{
  TfBase::acInsertRecordExecute();
  if (cdsMaster()->FindField(u"Id")) {
    openCard(ShowOption(so_NewRecord) | so_Card, noRowFilter());
  }
}

void TfBaseBrowseCard::acShowCardExecute()
{
  if (cdsMaster()->FindField(u"ID") && !cdsMaster()->IsEmpty()) {
    openCard(ShowOption(so_Normal) | so_Card, currentRecordFilter());
  }
}

void TfBaseBrowseCard::gridDoubleClicked(TDBGrid* grid)
{
  if (inSelectionMode()) {
    TfBase::gridDoubleClicked(grid);
  } else {
    execute(QStringLiteral("acShowCard"));
  }
}

bool TfBaseBrowseCardNoDelete::CheckDataModification(bool edit, bool remove, bool insert)
{
  return !edit && !remove && !insert;
}

}  // namespace kalvor
