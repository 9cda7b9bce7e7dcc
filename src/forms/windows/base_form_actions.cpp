// What the named actions run, which of them are enabled, and the verbs of the main window.
#include "forms/action_states.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "registry/windows/form_host.h"

namespace kalvor {

namespace {

// True unless another form is the one that the user works in.
bool worksInForm(const TfBase* form)
{
  QWidget* active = activeFormWidget();
  return !active || active == form || !dynamic_cast<IBaseIntf*>(active);
}

}  // namespace

void TfBase::bindActions()
{
  struct Body {
    const char* action;
    void (TfBase::*handler)();
  };
  static constexpr Body bodies[] = {
      {"acSave", &TfBase::acSaveExecute},
      {"acCancel", &TfBase::acCancelExecute},
      {"acExport", &TfBase::acExportExecute},
      {"acInsertRecord", &TfBase::acInsertRecordExecute},
      {"acDeleteRecord", &TfBase::acDeleteRecordExecute},
      {"acCopyRecord", &TfBase::acCopyRecordExecute},
      {"acEditRecord", &TfBase::acEditRecordExecute},
      {"acFieldFilter", &TfBase::acFieldFilterExecute},
      {"acTableFilter", &TfBase::acTableFilterExecute},
      {"acRemoveFilter", &TfBase::acRemoveFilterExecute},
      {"acSort", &TfBase::acSortExecute},
      {"acRefresh", &TfBase::acRefreshExecute},
      {"acGetDetails", &TfBase::acGetDetailsExecute},
      {"acSelect", &TfBase::acSelectExecute},
      {"acCopyNew", &TfBase::acCopyNewExecute},
      {"acImport", &TfBase::acImportExecute},
      {"acReCalcDocument", &TfBase::DoRecalcDocument},
  };
  for (const Body& body : bodies) {
    const QString name = QLatin1String(body.action);
    setActionHandler(name, [this, handler = body.handler] { (this->*handler)(); },
                     QStringLiteral("TfBase.%1Execute").arg(name));
  }
  setActionHandler(QStringLiteral("acFind"), [this] { FindDialogExecute(QString()); });
  setActionHandler(QStringLiteral("acClose"), [this] { windowOf(this)->close(); });
  bindGridActions();
}

QAction* TfBase::action(const QString& name) const
{
  return d->actions.find(name);
}

bool TfBase::execute(const QString& actionName)
{
  return d->actions.execute(actionName);
}

void TfBase::setActionHandler(const QString& name, std::function<void()> handler, const QString& context)
{
  d->actions.bind(name, std::move(handler), context.isEmpty() ? QStringLiteral("TfBase.%1Execute").arg(name) : context);
}

QAction* TfBase::addNamedAction(const QString& name, const QString& caption, const QKeySequence& shortcut,
                                std::function<void()> handler)
{
  QAction* action = d->actions.add(name, caption, shortcut);
  setActionHandler(name, std::move(handler));
  return action;
}

void TfBase::UpdateActionState()
{
  if (d->importing) {
    return;  // once, at its end
  }
  runGuarded(QStringLiteral("TfBase.UpdateActionState"), [this] {
    const TClientDataSet* master = GetCdsMaster();
    const bool open = master && master->Active();
    ActionFacts facts;
    if (open) {
      facts.editing = master->State() == DataSetState::Edit || master->State() == DataSetState::Insert;
      facts.changed = master->ChangeCount() > 0;
      facts.masterReadOnly = master->ReadOnly;
    }
    facts.canSave = d->canSave;
    facts.cannotSelect = d->options.testFlag(so_CannotSelect);
    facts.hasFilter = d->hasFilter;
    facts.mayEdit = CheckDataModification(true, false, false);
    facts.mayDelete = CheckDataModification(false, true, false);
    facts.mayInsert = CheckDataModification(false, false, true);
    const QHash<QString, bool> states = actionStates(facts);
    for (auto state = states.begin(); state != states.end(); ++state) {
      d->actions.setEnabled(state.key(), state.value());
    }
    CustomUpdateActionState();

    IMainFormIntf* main = mainForm();
    if (!main || d->stage == Private::Stage::Closed || !worksInForm(this)) {
      return;
    }
    PositionFacts position;
    position.atBeginning = !open || master->Bof() || master->RecNo() <= 1;
    position.atEnd = !open || master->Eof() || (master->AllFetched() && master->RecNo() >= master->RecordCount());
    position.canSelectAll = canSelectAll(focusWidget());
    main->SetActionStates(
        mainWindowActionLines([this](const QString& name) { return d->actions.isEnabled(name); }, position));
  });
}

// --- Verbs -----------------------------------------------------------------------------------------------------
// Those that TfBase has a body for run their action; the others belong to the descendants.

void TfBase::FieldFilter()
{
  execute(QStringLiteral("acFieldFilter"));
}

void TfBase::TableFilter()
{
  execute(QStringLiteral("acTableFilter"));
}

void TfBase::RemoveFilter()
{
  execute(QStringLiteral("acRemoveFilter"));
}

void TfBase::Find()
{
  execute(QStringLiteral("acFind"));
}

void TfBase::Refresh()
{
  execute(QStringLiteral("acRefresh"));
}

void TfBase::Sort()
{
  execute(QStringLiteral("acSort"));
}

void TfBase::CancelChanges()
{
  execute(QStringLiteral("acCancel"));
}

void TfBase::ExportCDS()
{
  execute(QStringLiteral("acExport"));
}

void TfBase::CopyNew()
{
  execute(QStringLiteral("acCopyNew"));
}

void TfBase::DeleteRecord() {}
void TfBase::ImportCDS() {}
void TfBase::InsertRecord() {}
void TfBase::CopyRecord() {}
void TfBase::EditRecord() {}
void TfBase::Print() {}
void TfBase::Preview() {}
void TfBase::PrintSelect() {}
void TfBase::PrintTXT() {}
void TfBase::ReCalcDocument() {}
void TfBase::SaveDocument() {}

// --- Empty hooks -----------------------------------------------------------------------------------------------

void TfBase::LoadColorOptionsFromXML() {}
void TfBase::AttachDynamicEvents(TClientDataSet*) {}
void TfBase::AttachDynamicAggregateEvents(TClientDataSet*) {}
void TfBase::CustomUpdateActionState() {}
void TfBase::GetDocumentInfo() {}
void TfBase::BuildRaveFilter() {}
void TfBase::ProcessCopyData() {}
void TfBase::GetPrintDocument() {}
void TfBase::DoRecalcDocument() {}
void TfBase::ApplyDataModificationColors() {}
void TfBase::ApplyReadOnlyColors() {}
void TfBase::InitGridColumns() {}
void TfBase::SetSecurityFilter(const FilterArray&) {}
void TfBase::buildLayout() {}
void TfBase::acSaveExecute() {}
void TfBase::acSelectExecute() {}

bool TfBase::CheckDataModification(bool, bool, bool)
{
  return true;
}

bool TfBase::isLockedField(TField*)
{
  return false;
}

int TfBase::SetSelectorAction(TField*)
{
  return 1;
}

bool TfBase::ifInCopyData() const
{
  return false;
}

QString TfBase::SpellNumber(bool)
{
  return {};
}

}  // namespace kalvor
