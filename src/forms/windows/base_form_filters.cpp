// The form's filter: default, field filter, removal; ordering by a title click; searching.
#include "common/sql_text.h"
#include "filters/windows/field_filter_dialog.h"
#include "filters/windows/search_dialog.h"
#include "filters/windows/sort_dialog.h"
#include "filters/windows/table_filter.h"
#include "forms/field_metadata.h"
#include "forms/form_filters.h"
#include "forms/messages.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/incremental_search.h"
#include "platform/ports.h"
#include "registry/windows/form_host.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

namespace {

// The criterion that the form filter holds for the field, else what the field shows.
QString startingCriterion(const TField* field, const FilterArray& formFilter)
{
  for (const FilterRow& row : formFilter) {
    if (!field->Origin.isEmpty() && row.field == field->Origin) {
      return variantText(row.value);
    }
  }
  return field->DisplayText();
}

}  // namespace

void TfBase::takeDefaultFilter(const QString& text)
{
  const DefaultFilterDecision decision = decideDefaultFilter(text, d->formFilter, d->options);
  if (decision.kind == DefaultFilterDecision::Kind::Use) {
    d->formFilter = decision.filter;
  } else if (decision.kind == DefaultFilterDecision::Kind::AskUser) {
    d->openEmpty = true;
    d->tableFilterShown = true;
    d->askedFilter = decision.filter;
  }
}

void TfBase::SetPblFilter(const FilterArray& publicFilter, const ParameterArray& params, bool merge)
{
  const WaitCursorScope wait;
  const FilterArray newFilter = mergeFormFilter(d->formFilter, publicFilter, merge);
  const ParameterArray before = std::exchange(d->sqlParameters, GetAllParams(d->sqlParameters, params));
  if (!RequestDataSet(0, buildRequestFilter(d->callerFilter, newFilter), d->sortOrder)) {
    d->sqlParameters = before;
    return;
  }
  d->formFilter = newFilter;
  d->hasFilter = !newFilter.isEmpty();
  d->openEmpty = false;
  reopenMaster();
  if (GetCdsMaster()->Active()) {
    acGetDetailsExecute();
  }
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(d->hasFilter);
  }
}

void TfBase::acFieldFilterExecute()
{
  if (!QueryToSaveBeforeToDo()) {
    return;
  }
  TField* field = focusedField(this);
  if (!field) {
    throw FormRefusal(_err_selectField);
  }
  if (!hasFlag(field, ffFilterable)) {
    throw FormRefusal(_err_NotFilterableField);
  }
  const TCDSOptions* entry = GetCdsOptsByFld(field);
  const int row = EncodeFieldIndexFromTag(field->Tag);
  const VariantArray description = entry ? entry->FieldDescriptions.value(row).toList() : VariantArray();
  TfFilterFields dialog(this, d->formId, field, description, startingCriterion(field, d->formFilter),
                        field->DisplayLabel, action(QStringLiteral("acTableFilter")), window());
  dialog.DoShowFieldFilter();
}

void TfBase::acTableFilterExecute()
{
  if (d->tableFilter) {
    d->tableFilter->activateWindow();
  } else if (GetCdsMaster() && QueryToSaveBeforeToDo()) {
    openTableFilter(d->formFilter);
  }
}

void TfBase::openTableFilter(const FilterArray& startFilter)
{
  auto* editor = new TfTableFilter(this, d->caption, cdsOptions(0).FieldDescriptions, GetCdsMaster(), startFilter, this);
  d->tableFilter = editor;
  connect(editor, &QDialog::finished, this, [this, editor] {
    d->tableFilter = nullptr;
    editor->deleteLater();
  });
  editor->DoShowTableFilter();
}

// A form whose default filter leaves a part to the user: it appears with what the user wants to see.
void TfBase::askForFilter()
{
  openTableFilter(d->askedFilter);
  connect(d->tableFilter, &QDialog::finished, this, [this](int result) {
    if (result == QDialog::Accepted) {
      showWindow();
    } else if (!isVisible()) {
      windowOf(this)->close();
    }
  });
}

void TfBase::acSortExecute()
{
  if (!GetCdsMaster() || !QueryToSaveBeforeToDo()) {
    return;
  }
  TfSort dialog(window());
  QString order = d->sortOrder;
  if (dialog.ShowSortForm(GetCdsMaster(), order) != 1) {
    return;
  }
  d->sortOrder = order;
  const WaitCursorScope wait;
  if (RequestDataSet(0, d->openEmpty ? noRowFilter() : requestFilter(), d->sortOrder)) {
    reopenMaster();
  }
}

void TfBase::acRemoveFilterExecute()
{
  if (!QueryToSaveBeforeToDo()) {
    return;
  }
  const WaitCursorScope wait;
  if (!RequestDataSet(0, d->callerFilter, d->sortOrder)) {
    return;
  }
  d->formFilter.clear();
  d->hasFilter = false;
  d->openEmpty = false;
  reopenMaster();
  if (IMainFormIntf* main = mainForm()) {
    main->SetHasFilter(false);
  }
}

void TfBase::becomeCardOf(const FilterArray& record)
{
  d->callerFilter = callerWithSecurityFilter(record, securityFilter());
}

void TfBase::titleClicked(TDBGrid* grid, TField* field, TitleClick click)
{
  TClientDataSet* dataSet = grid->dataSet();
  const bool sortable = field && (field->FieldKind() == FieldValueKind::Data ||
                                  field->FieldKind() == FieldValueKind::InternalCalculated);
  const bool inserting = dataSet && dataSet->State() == DataSetState::Insert && !qobject_cast<TDBGridEx*>(grid);
  if (!dataSet || !dataSet->Active() || inserting || !sortable) {
    return;
  }
  runGuarded(QStringLiteral("TfBase.DBGridTitleClick"), [&] {
    const WaitCursorScope wait;
    dataSet->SetIndexFieldNames(orderAfterTitleClick(dataSet->IndexFieldNames(), field->FieldName(), click));
    if (click == TitleClick::OrdersByIt) {
      dataSet->First();
    }
    grid->selectField(field->FieldName());
  });
}

void TfBase::FindDialogExecute(const QString& text)
{
  TDBGrid* grid = focusedGrid(this);
  if (!grid) {
    grid = findChild<TDBGrid*>();
  }
  if (!grid || !grid->selectedField()) {
    return;
  }
  if (!text.isEmpty()) {
    IncrementalSearch::start(grid, text);
    return;
  }
  if (!d->search) {
    d->search = new TfSearch(this);
  }
  d->search->ShowSearchForm(grid);
}

}  // namespace kalvor
