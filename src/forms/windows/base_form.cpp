#include "forms/windows/base_form.h"

#include <QMenu>

#include "common/sql_text.h"
#include "filters/windows/search_dialog.h"
#include "filters/windows/table_filter.h"
#include "forms/windows/base_form_private.h"
#include "forms/field_metadata.h"
#include "platform/ports.h"
#include "session/error_log.h"

namespace kalvor {

FormRefusal::FormRefusal(const QString& message) : DataError(message) {}
FormRefusal::~FormRefusal() = default;

TfBase::Private::Private(TfBase* form)
    : actions(form, [form](const QString& context, const std::function<void()>& body) { form->runGuarded(context, body); }),
      selectors(form)
{
}

TfBase::TfBase(QWidget* parent) : QWidget(parent)
{
  // Not before: the actions' own creation comes to event().
  d = std::make_unique<Private>(this);
  d->uniqueId = CreateUniqueID();
  d->gridMenu = new QMenu(this);
  setFocusPolicy(Qt::NoFocus);
  bindActions();
  bindSelectors();
}

TfBase::~TfBase()
{
  // The datasets are freed after this object: their events must not come back to it.
  for (const auto& entry : d->dataSets) {
    TClientDataSet* dataSet = entry->DataSet;
    for (DataSetEvent* event : {&dataSet->AfterOpen, &dataSet->AfterClose, &dataSet->BeforeClose, &dataSet->AfterScroll,
                                &dataSet->OnNewRecord, &dataSet->BeforeEdit, &dataSet->BeforeInsert,
                                &dataSet->OnStateChange}) {
      *event = nullptr;
    }
  }
  delete d->tableFilter;
  delete d->search;
  FormDestroy();
}

// --- State ---------------------------------------------------------------------------------------------------

int TfBase::formId() const
{
  return d->formId;
}

ShowOption TfBase::showOptions() const
{
  return d->options;
}

const QString& TfBase::uniqueId() const
{
  return d->uniqueId;
}

int TfBase::dataSetCount() const
{
  return int(d->dataSets.size());
}

TCDSOptions& TfBase::cdsOptions(int dsIndex) const
{
  return *d->dataSets.at(size_t(dsIndex));
}

int TfBase::GetCdsOptPos(const TClientDataSet* dataSet) const
{
  for (size_t i = 0; i < d->dataSets.size(); ++i) {
    if (d->dataSets[i]->DataSet == dataSet) {
      return int(i);
    }
  }
  return -1;
}

TCDSOptions* TfBase::GetCdsOpts(const TClientDataSet* dataSet) const
{
  const int position = GetCdsOptPos(dataSet);
  return position < 0 ? nullptr : d->dataSets[size_t(position)].get();
}

TCDSOptions* TfBase::GetCdsOptsByFld(const TField* field) const
{
  return field ? GetCdsOpts(field->DataSet()) : nullptr;
}

int TfBase::GetCdsOptsPosByFld(const TField* field) const
{
  return field ? GetCdsOptPos(field->DataSet()) : -1;
}

TClientDataSet* TfBase::GetCdsMaster() const
{
  return d->dataSets.empty() ? nullptr : d->dataSets.front()->DataSet;
}

ParameterArray TfBase::GetSqlParams() const
{
  return d->sqlParameters;
}

const TFormRights& TfBase::rights() const
{
  return d->rights;
}

const FilterArray& TfBase::formFilter() const
{
  return d->formFilter;
}

const FilterArray& TfBase::callerFilter() const
{
  return d->callerFilter;
}

const FilterArray& TfBase::securityFilter() const
{
  return d->rights.SecurityFilter;
}

bool TfBase::hasFilter() const
{
  return d->hasFilter;
}

const QString& TfBase::sortOrder() const
{
  return d->sortOrder;
}

void TfBase::setSortOrder(const QString& order)
{
  d->sortOrder = order;
}

const TDefaultValues& TfBase::defaultValues() const
{
  return d->defaultValues;
}

TSelectionList& TfBase::selection()
{
  return d->sharedSelection ? *d->sharedSelection : d->ownSelection;
}

bool TfBase::inSelectionMode() const
{
  return bool(d->options & selectionModes());
}

Variant TfBase::GetFieldDescription(const TField* field, int column) const
{
  return FieldDescription(fieldDescriptionRow(field)).value(FieldColumn(column));
}

Variant TfBase::fieldDescriptionRow(const TField* field) const
{
  const TCDSOptions* entry = GetCdsOptsByFld(field);
  return entry ? entry->FieldDescriptions.value(EncodeFieldIndexFromTag(field->Tag)) : Variant();
}

bool TfBase::canSave() const
{
  return d->canSave;
}

void TfBase::setCanSave(bool on)
{
  d->canSave = on;
  UpdateActionState();
}

bool TfBase::tableFilterShown() const
{
  return d->tableFilterShown;
}

int TfBase::modalResult() const
{
  return d->modalResult;
}

bool TfBase::CheckFormID(const QString& id) const
{
  return id == d->uniqueId;
}

void TfBase::SetFormOwner(QObject* owner)
{
  d->owner = owner;
}

void TfBase::SetFormCaller(QObject* caller)
{
  d->caller = caller;
}

QObject* TfBase::formOwner() const
{
  return d->owner;
}

QObject* TfBase::GetFormCaller() const
{
  return d->caller;
}

void TfBase::SetActiveSelector(ISelectorOwnerIntf* target)
{
  d->activeSelector = target;
}

QMenu* TfBase::gridMenu() const
{
  return d->gridMenu;
}

// --- Creation ------------------------------------------------------------------------------------------------

void TfBase::FormCreate()
{
  if (d->stage != Private::Stage::New) {
    return;
  }
  d->stage = Private::Stage::Created;
  runGuarded(QStringLiteral("TfBase.FormCreate"), [this] {
    const auto dataSets = findChildren<TClientDataSet*>(QString(), Qt::FindDirectChildrenOnly);
    for (TClientDataSet* dataSet : dataSets) {
      hookDataSet(dataSet);
    }
  });
}

// --- Errors --------------------------------------------------------------------------------------------------

// A refusal is meant for the user alone; what comes from the server or a dataset is kept in the log as well.
bool TfBase::runGuarded(const QString& context, const std::function<void()>& body)
{
  try {
    body();
    return true;
  } catch (const SilentAbort&) {
    // The user was told where it happened.
  } catch (const TELException& error) {
    showError(error.message());
  } catch (const FormRefusal& error) {
    showError(error.message());
  } catch (const std::exception& error) {
    LogError(errorText(error), context);
    showError(errorText(error));
  }
  return false;
}

}  // namespace kalvor
