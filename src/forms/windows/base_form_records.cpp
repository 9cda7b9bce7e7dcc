// Records: rights guards, defaults of new ones, cancelling, refreshing, what selectors and importers put in.
#include "forms/default_values.h"
#include "forms/field_metadata.h"
#include "forms/messages.h"
#include "forms/record_rules.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {

namespace {

// Field change handlers are quiet while this lives.
class DefaultsScope {
 public:
  explicit DefaultsScope(int& marker) : marker_(marker) { ++marker_; }
  ~DefaultsScope() { --marker_; }
  DefaultsScope(const DefaultsScope&) = delete;
  DefaultsScope& operator=(const DefaultsScope&) = delete;

 private:
  int& marker_;
};

}  // namespace

// --- Guards ----------------------------------------------------------------------------------------------------

void TfBase::requireReadRight()
{
  if (!d->rights.ReadRight) {
    throw FormRefusal(rightsRefusal(_err_ReadNotAllowed, d->formId));
  }
}

void TfBase::requireEditRight()
{
  if (!d->rights.EditRight) {
    throw FormRefusal(rightsRefusal(_err_EditNotAllowed, d->formId));
  }
}

void TfBase::requireInsertRight()
{
  if (!d->rights.InsertRight) {
    throw FormRefusal(rightsRefusal(_err_InsertNotAllowed, d->formId));
  }
}

void TfBase::requireDeleteRight()
{
  if (!d->rights.DeleteRight) {
    throw FormRefusal(rightsRefusal(_err_DeleteNotAllowed, d->formId));
  }
}

void TfBase::refuseStateChange(DataSetState state)
{
  const StateChangeRefusal refusal = checkStateChange(state, d->rights, CheckDataModification(true, false, false),
                                                      CheckDataModification(false, false, true));
  switch (refusal) {
    case StateChangeRefusal::None: return;
    case StateChangeRefusal::CancelAllChanges: cancelAllUpdates(); break;
    case StateChangeRefusal::CancelEdit:
    case StateChangeRefusal::CancelInsert: GetCdsMaster()->Cancel(); break;
  }
  throw FormRefusal(rightsRefusal(
      refusal == StateChangeRefusal::CancelInsert ? _err_InsertNotAllowed : _err_EditNotAllowed, d->formId));
}

// Refusing before the state changes leaves controls and other listeners in a state that they know.
void TfBase::CDS_BeforeEdit(TClientDataSet* dataSet)
{
  if (dataSet == GetCdsMaster()) {
    refuseStateChange(DataSetState::Edit);
  }
  if (const auto& kept = GetCdsOpts(dataSet)->BeforeEdit) {
    kept(dataSet);
  }
}

void TfBase::CDS_BeforeInsert(TClientDataSet* dataSet)
{
  if (dataSet == GetCdsMaster()) {
    refuseStateChange(DataSetState::Insert);
  }
  if (const auto& kept = GetCdsOpts(dataSet)->BeforeInsert) {
    kept(dataSet);
  }
}

void TfBase::dsMasterStateChange(TClientDataSet* master)
{
  refuseStateChange(master->State());
  UpdateActionState();
}

void TfBase::acInsertRecordExecute()
{
  requireInsertRight();
}

void TfBase::acCopyRecordExecute()
{
  requireInsertRight();
}

void TfBase::acEditRecordExecute()
{
  requireEditRight();
}

void TfBase::acDeleteRecordExecute()
{
  requireDeleteRight();
}

// --- Defaults --------------------------------------------------------------------------------------------------

void TfBase::GenerateID(TClientDataSet* dataSet)
{
  kalvor::GenerateID(*dataSet);
}

QString TfBase::GetFieldDefaultValue(int dsIndex, int fieldIndex) const
{
  return dsIndex >= 0 && dsIndex < dataSetCount()
             ? defaultValueText(cdsOptions(dsIndex).FieldDescriptions, fieldIndex)
             : QString();
}

Variant TfBase::ParseDefaultValue(const QString& text, TField* field)
{
  return kalvor::ParseDefaultValue(text, field, {&LocalData, GetCdsMaster(), [this](TField* called) {
                                                 if (selectorOf(called)) {
                                                   d->selectors.runForDefault(called);
                                                 }
                                               }});
}

void TfBase::CDS_ParseDefaultValues(TClientDataSet* dataSet)
{
  const int index = GetCdsOptPos(dataSet);
  const TCDSOptions& entry = cdsOptions(index);
  {
    const DefaultsScope quiet(d->parsingDefaults);
    const auto parse = [this](const QString& text, TField* field) { return ParseDefaultValue(text, field); };
    applyDefaultValues(*dataSet, index, entry.FieldDescriptions, d->defaultValues, parse,
                       {&LocalData, GetCdsMaster(), {}});
  }
  if (entry.OnNewRecord) {
    entry.OnNewRecord(dataSet);
  }
}

void TfBase::FieldOnValidate(TField* field)
{
  if (isLockedField(field)) {
    throw FormRefusal(lockedFieldMessage(field));
  }
  d->selectors.fieldChanging(field);
}

// --- Cancelling and refreshing ---------------------------------------------------------------------------------

void TfBase::acCancelExecute()
{
  cancelAllUpdates();
  UpdateActionState();
}

void TfBase::acRefreshExecute()
{
  const WaitCursorScope wait;
  TClientDataSet* master = GetCdsMaster();
  if (CheckState()) {
    master->Post();
  }
  if (hasChanges()) {
    showInformation(_inf_unAppliedRecords);
    return;
  }
  {
    const ControlsDisabledScope quiet(master);
    master->Refresh();
  }
  acGetDetailsExecute();
}

// --- Forms opened from this one --------------------------------------------------------------------------------

void TfBase::SelectorFormSaved(QObject*, const QString&) {}

void TfBase::tellOwnerSaved(const QString& recordId)
{
  if (auto* owner = dynamic_cast<ISelectorOwnerIntf*>(d->owner.data())) {
    owner->SelectorFormSaved(this, recordId);
  }
}

void TfBase::adoptOpenedForm(QWidget* form)
{
  std::erase_if(d->openedForms, [](const QPointer<QWidget>& known) { return !known; });
  d->openedForms.emplace_back(form);
}

}  // namespace kalvor
