// The form's lookups: what changes of fields run, what chosen records put in, where the focus goes afterwards.
#include <QLineEdit>
#include <QTimer>

#include "forms/field_metadata.h"
#include "forms/record_rules.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "registry/windows/form_host.h"
#include "session/dm.h"
#include "session/server_calls.h"
#include "widgets/data_control.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

SeriesCalls sessionSeriesCalls()
{
  return {[](int formId, int dsIndex) {
            return DM ? DM->ConBroker->Call(QStringLiteral("GetQueryID"), {formId, dsIndex}).toInt() : 0;
          },
          [](int query, const QString& source, const QString& columns, const FilterArray& filter, Variant& value,
             bool allRows) {
            return DM ? requestValue(*DM->ConBroker, query, source, columns, filter, value,
                                     allRows ? RowsWanted::All : RowsWanted::First)
                      : 0;
          }};
}

// A control of the field that still holds what the field did not take.
DataControl* refusedControl(const QWidget* form, const TField* field)
{
  for (QWidget* widget : form->findChildren<QWidget*>()) {
    DataControl* control = DataControl::of(widget);
    if (control && control->field() == field && control->isPending()) {
      return control;
    }
  }
  return nullptr;
}

}  // namespace

void TfBase::bindSelectors()
{
  d->selectors.defaultsInProgress = [this] { return d->parsingDefaults > 0; };
  d->selectors.choicePut = [this](TClientDataSet* dataSet) { choicePut(dataSet); };
  d->selectors.choiceRefused = [this](TField* field) {
    QTimer::singleShot(0, this, [this, dataSet = QPointer<TClientDataSet>(field->DataSet()), name = field->FieldName()] {
      if (dataSet) {
        backToField(dataSet, name);
      }
    });
  };
}

bool TfBase::isFillingDefaults() const { return d->parsingDefaults > 0; }
bool TfBase::isPuttingChoice() const { return d->selectors.isPuttingChoice(); }
void TfBase::choicePut(TClientDataSet*) {}

void TfBase::linesComing(const TImportSet&, const TFormatSettings&) {}

void TfBase::documentPut() {}

// --- Selectors of fields ---------------------------------------------------------------------------------------

TSelector* TfBase::selectorOf(TField* field)
{
  return d->selectors.add(field, variantText(GetFieldDescription(field, int(FieldColumn::SelectorDesc))));
}

void TfBase::SetFieldOnChange(TField* field)
{
  if (selectorOf(field)) {
    d->selectors.bindChanges(field);
  }
}

void TfBase::SetSerieFieldOnChange(TField* field)
{
  QStringList& known = d->seriesFields[field->DataSet()];
  if (known.contains(field->FieldName(), Qt::CaseInsensitive)) {
    return;
  }
  known.append(field->FieldName());
  d->selectors.addChangeHandler(field, [this](TField* changed) {
    SerieFieldOnChange(changed, d->parsingDefaults > 0, sessionSeriesCalls());
  });
}

QStringList TfBase::seriesFields(const TClientDataSet* dataSet) const
{
  return d->seriesFields.value(dataSet);
}

// Lookup fields that no control shows run their selectors, too.
void TfBase::makeFieldSelectors(TClientDataSet* dataSet)
{
  for (TField* field : dataSet->Fields()) {
    if (hasFlag(field, ffLookup) && !d->selectors.find(field)) {
      SetFieldOnChange(field);
    }
  }
}

TSelectorDependantFieldsArray TfBase::GetSelectorDependantFields() const
{
  return d->selectors.dependants();
}

void TfBase::SetDependantSelectorField(TField* field, TSelector* selector)
{
  d->selectors.setDependant(field, selector);
}

void TfBase::FieldOnChange(TField* field)
{
  d->selectors.changed(field);
}

// --- Running ---------------------------------------------------------------------------------------------------

int TfBase::runSelector(TSelector& selector, SelectorControl* control, QWidget* asking, const QString& filterText)
{
  d->lookupAsker = asking;
  const int result = d->selectors.run(selector, control, filterText);
  if (!d->selectorForm) {
    d->lookupAsker = nullptr;
  }
  return result;
}

void TfBase::SetSelectorForm(QObject* form)
{
  d->selectorForm = form;
  if (!form) {
    d->selectors.lookupClosed();
    QTimer::singleShot(0, this, [this] { backFromLookup(); });
  }
}

void TfBase::backFromLookup()
{
  const QPointer<QWidget> asker = std::exchange(d->lookupAsker, {});
  if (asker && !d->selectorForm && d->stage == Private::Stage::Shown) {
    activateForm(this);
    asker->setFocus(Qt::OtherFocusReason);
  }
}

// The lookup was left without a choice: the control shows what the field holds, and the user goes on there.
void TfBase::backToField(TClientDataSet* dataSet, const QString& fieldName)
{
  const TField* field = dataSet->FindField(fieldName);
  DataControl* control = field ? refusedControl(this, field) : nullptr;
  if (!control) {
    return;
  }
  control->revert();
  activateForm(this);
  QWidget* widget = control->controlWidget();
  widget->setFocus(Qt::OtherFocusReason);
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    edit->selectAll();
  }
}

// --- Values from outside ---------------------------------------------------------------------------------------

void TfBase::SetCdsValues(const TDefaultValues& values)
{
  TClientDataSet* master = GetCdsMaster();
  master->Append();
  for (const TDefaultValue& value : values) {
    if (value.DsIndex < 0 || value.DsIndex >= dataSetCount()) {
      continue;
    }
    TClientDataSet* dataSet = cdsOptions(value.DsIndex).DataSet;
    if (value.DsIndex != 0) {
      dataSet->Append();
    }
    TField* field = dataSet->FindField(value.FieldName);
    if (hasFlag(field, ffLookup)) {
      const QString description = variantText(GetFieldDescription(field, int(FieldColumn::SelectorDesc)));
      d->selectors.setWithLookup(field, value.Value, description);
    } else if (field) {
      field->SetValue(value.Value);
    }
  }
}

bool TfBase::ProcessSelectedRecords(const TSelectionList& selection, ShowOption options)
{
  if (d->activeSelector) {
    return d->activeSelector->ProcessSelectedRecords(selection, options);
  }
  if (selection.isEmpty()) {
    return false;
  }
  if (d->selectors.isSearching()) {
    // The control whose text started the search is waiting for it; it tells what goes wrong.
    d->selectors.putChosen(selection);
    return true;
  }
  return runGuarded(QStringLiteral("TfBase.ProcessSelectedRecords"), [&] {
    commitFocusedControl(this);
    d->selectors.putChosen(selection);
  });
}

void TfBase::ProcessMarkedRecords(const TSelectionList& selection, ShowOption options)
{
  ProcessSelectedRecords(selection, options);
}

}  // namespace kalvor
