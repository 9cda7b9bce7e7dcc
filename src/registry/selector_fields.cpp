#include "registry/selector_fields.h"

#include <QScopedValueRollback>
#include <algorithm>

#include "filters/filter_expression.h"
#include "forms/record_rules.h"
#include "registry/selector_lookup.h"
#include "registry/selector_values.h"

namespace kalvor {

namespace {

QString withEqualityForLike(const QString& storedFilter)
{
  FilterArray filter = BuildFilterFromStr(storedFilter);
  for (FilterRow& row : filter)
    if (row.op.trimmed().compare(QLatin1String("LIKE"), Qt::CaseInsensitive) == 0)
      row.op = QStringLiteral("=");
  return BuildStrFilter(filter);
}

}  // namespace

struct SelectorFields::Entry {
  QPointer<TClientDataSet> dataSet;
  QString fieldName;
  TField* field = nullptr;  // found anew at each opening
  std::unique_ptr<TSelector> selector;
  bool bound = false;       // changes run the selector
  FieldEvent added;         // called before the field's own
  FieldEvent kept;          // the field's own handler
  Variant before;           // what the field held before the change that is going on
  bool passing = false;     // its own handler runs
  bool passed = false;
};

struct SelectorFields::ChangeHandler {
  SelectorFields* fields;
  void operator()(TField* field) const { fields->fieldChanged(field); }
};

SelectorFields::SelectorFields(QObject* owner) : owner_(owner) {}

SelectorFields::~SelectorFields()
{
  for (const auto& entry : entries_) {
    TField* field = entry->dataSet ? entry->dataSet->FindField(entry->fieldName) : nullptr;
    if (field && field->OnChange.target<ChangeHandler>())
      field->OnChange = entry->kept;
  }
}

// --- Entries -------------------------------------------------------------------------------------------------

SelectorFields::Entry* SelectorFields::entryOf(const TField* field) const
{
  const auto found = std::ranges::find_if(entries_, [field](const auto& entry) { return entry->field == field; });
  return found == entries_.end() ? nullptr : found->get();
}

SelectorFields::Entry& SelectorFields::needEntry(TField* field)
{
  if (Entry* known = entryOf(field))
    return *known;
  auto entry = std::make_unique<Entry>();
  entry->dataSet = field->DataSet();
  entry->fieldName = field->FieldName();
  entry->field = field;
  entries_.push_back(std::move(entry));
  return *entries_.back();
}

void SelectorFields::hook(Entry& entry)
{
  if (entry.field->OnChange.target<ChangeHandler>())
    return;
  if (!entry.kept)
    entry.kept = entry.field->OnChange;
  entry.field->OnChange = ChangeHandler{this};
}

TSelector* SelectorFields::find(const TField* field) const
{
  const Entry* entry = entryOf(field);
  return entry ? entry->selector.get() : nullptr;
}

TSelector* SelectorFields::add(TField* field, const QString& description)
{
  if (TSelector* known = find(field))
    return known;
  if (description.trimmed().isEmpty())
    return nullptr;
  Entry& entry = needEntry(field);
  entry.selector = std::make_unique<TSelector>(owner_, field, description, field->DataSet());
  entry.selector->SetDependantFields();
  return entry.selector.get();
}

void SelectorFields::bindChanges(TField* field)
{
  Entry& entry = needEntry(field);
  entry.bound = true;
  hook(entry);
}

void SelectorFields::addChangeHandler(TField* field, FieldEvent handler)
{
  Entry& entry = needEntry(field);
  entry.added = std::move(handler);
  hook(entry);
}

void SelectorFields::setDependant(TField* field, TSelector* selector)
{
  const auto same = [&](const TSelectorDependantField& entry) {
    return entry.Field == field && entry.Selector == selector;
  };
  if (std::ranges::none_of(dependants_, same))
    dependants_.append({field, selector});
  hook(needEntry(field));
}

// --- Datasets ------------------------------------------------------------------------------------------------

void SelectorFields::dataSetOpened(TClientDataSet* dataSet)
{
  std::vector<TSelector*> selectors;
  for (const auto& entry : entries_) {
    if (entry->dataSet != dataSet)
      continue;
    entry->field = dataSet->FindField(entry->fieldName);
    if (entry->field && (entry->bound || entry->added))
      hook(*entry);
    if (entry->field && entry->selector)
      selectors.push_back(entry->selector.get());
  }
  for (TSelector* selector : selectors)
    selector->SetDependantFields();
}

void SelectorFields::dataSetClosing(TClientDataSet* dataSet)
{
  dependants_.removeIf([dataSet](const TSelectorDependantField& entry) { return entry.Field->DataSet() == dataSet; });
}

void SelectorFields::dataSetScrolled(const TClientDataSet* dataSet)
{
  for (const auto& entry : entries_)
    if (entry->dataSet == dataSet && entry->selector)
      entry->selector->Index = entry->selector->GetIndex();
}

void SelectorFields::fieldChanging(TField* field)
{
  if (Entry* entry = entryOf(field); entry && entry->bound)
    entry->before = field->ValueAt(field->DataSet()->RecNo() - 1);
}

// --- Changes -------------------------------------------------------------------------------------------------

void SelectorFields::fieldChanged(TField* field)
{
  Entry* entry = entryOf(field);
  if (!entry || entry->passing)
    return;
  const bool defaults = defaultsInProgress && defaultsInProgress();
  for (const TSelectorDependantField& dependant : TSelectorDependantFieldsArray(dependants_)) {
    if (dependant.Field == field && !defaults) {
      const Hold hold(*this);
      dependant.Selector->ModifySelectorFieldsIfChanged(field);
    }
  }
  if (entry->bound && entry->selector)
    changed(field);
  else
    passOn(*entry, field);
}

void SelectorFields::passOn(Entry& entry, TField* field)
{
  entry.passed = true;
  if (entry.passing)
    return;
  const QScopedValueRollback<bool> passing(entry.passing, true);
  for (const FieldEvent& handler : {entry.added, entry.kept})
    if (handler)
      handler(field);
}

void SelectorFields::changed(TField* field)
{
  Entry* entry = entryOf(field);
  if (!entry || !entry->selector)
    return;
  if (quiet())
    passOn(*entry, field);
  else if (selectorFieldChange(field->AsString().trimmed(), field->Required) == SelectorFieldChange::SetNull)
    setNull(*entry, field);
  else
    search(*entry, field);
}

// The reference to the other record goes with the text that stood for it.
void SelectorFields::setNull(Entry& entry, TField* field)
{
  const Hold hold(*this);
  field->SetValue({});
  const int index = entry.selector->GetIndex();
  if (index < 0)
    return;
  const TSelectorItem& item = entry.selector->Items[index];
  const QStringList sources = selectorFieldNames(item.SourceFields);
  const QStringList targets = selectorFieldNames(item.TargetFields);
  for (qsizetype i = 0; i < targets.size(); ++i) {
    TField* target = field->DataSet()->FindField(targets[i]);
    if (target && target != field && sources.value(i).compare(QLatin1String("Id"), Qt::CaseInsensitive) == 0)
      setFieldAnyway(target, {});
  }
}

void SelectorFields::search(Entry& entry, TField* field)
{
  const Variant previous = entry.before;
  const Hold hold(*this);
  const QScopedValueRollback<int> searching(searching_, searching_ + 1);
  entry.passed = false;
  TSelector::SearchResult result;
  try {
    result = entry.selector->Search(field, field->AsString().trimmed());
  } catch (...) {
    refuse(entry, field, previous);
    throw;
  }
  if (result == TSelector::SearchResult::NotChosen) {
    refuse(entry, field, previous);
    throw SilentAbort();
  }
  if (!entry.passed)
    passOn(entry, field);
}

void SelectorFields::refuse(Entry& entry, TField* field, const Variant& previous)
{
  if (field->DataSet()->IsEditing() && field->Value() != previous)
    field->SetValue(previous);
  entry.before = previous;
  if (choiceRefused)
    choiceRefused(field);
}

// --- Lookups -------------------------------------------------------------------------------------------------

int SelectorFields::run(TSelector& selector, SelectorControl* control, const QString& filterText)
{
  lookup_ = {};
  const QScopedValueRollback<SelectorControl*> current(selector.Control, control);
  const int result = selector.Execute(nullptr, filterText);
  if (result == SelectorOpened && selector.DataSet && selector.DataSet->Active())
    lookup_ = {selector.DataSet, selector.DataSet->GetBookmark()};
  return result;
}

void SelectorFields::runForDefault(TField* field)
{
  if (TSelector* selector = find(field)) {
    const QScopedValueRollback<int> searching(searching_, searching_ + 1);
    selector->FillOrChoose(field);
  }
}

void SelectorFields::setWithLookup(TField* field, const Variant& value, const QString& description)
{
  const Hold hold(*this);
  const QScopedValueRollback<int> searching(searching_, searching_ + 1);
  field->SetValue(value);
  const QString text = field->AsString().trimmed();
  if (text.isEmpty())
    return;
  TSelector exact(owner_, field, description, field->DataSet());
  for (TSelectorItem& item : exact.Items)
    for (QString* filter : {&item.Filter, &item.PublicFilter})
      *filter = withEqualityForLike(*filter);
  exact.Search(field, text);
}

void SelectorFields::setExactly(TField* field, const QString& text)
{
  Entry* entry = entryOf(field);
  if (!entry || !entry->bound || !entry->selector) {
    field->SetEditText(text);
    return;
  }
  const Hold hold(*this);
  const QScopedValueRollback<int> searching(searching_, searching_ + 1);
  field->SetEditText(text);
  if (text.trimmed().isEmpty())
    setNull(*entry, field);
  else if (entry->selector->FillExactly(field, text.trimmed()) == TSelector::SearchResult::NotChosen)
    throw DataError(QStringLiteral("няма точно един запис „%1“.").arg(text.trimmed()));
}

// The lookup form may have stayed open beside this one while the user moved on.
void SelectorFields::goToLookupRecord(TClientDataSet* dataSet)
{
  const LookupRecord lookup = std::exchange(lookup_, {});
  const bool stayed = searching_ > 0 || lookup.dataSet != dataSet || lookup.bookmark == dataSet->GetBookmark();
  if (!stayed && (lookup.bookmark == noBookmark || !dataSet->GotoBookmark(lookup.bookmark)))
    throw DataError(QStringLiteral("Записът, за който е отворен изборът, вече не се редактира."));
}

namespace {

// One value a target; of several records the texts, joined with "|".
Variant chosenValue(const TSelectionList& selection, qsizetype position)
{
  if (selection.size() == 1)
    return selection.first().at(position).Value;
  QStringList texts;
  for (const TRecordLine& line : selection)
    if (position < line.size())
      texts.append(variantText(line.at(position).Value));
  return texts.join(u'|');
}

}  // namespace

void SelectorFields::putChosen(const TSelectionList& selection)
{
  const Hold hold(*this);
  QList<ChosenValue> values;
  const TRecordLine line = selection.value(0);
  for (qsizetype i = 0; i < line.size(); ++i) {
    TField* field = line[i].Field;
    if (!field)
      continue;
    if (values.isEmpty())
      goToLookupRecord(field->DataSet());
    if (!field->DataSet()->IsEditing())
      field->DataSet()->Edit();
    values.append({field, chosenValue(selection, i), field->Value()});
  }
  // The fields that other targets depend on come first, so that their change resets nothing that was just put in.
  const auto decides = [this](const ChosenValue& value) {
    return std::ranges::any_of(dependants_, [&](const auto& entry) { return entry.Field == value.field; });
  };
  std::stable_partition(values.begin(), values.end(), decides);
  putValues(values);
  if (!values.isEmpty() && choicePut)
    choicePut(values.first().field->DataSet());
}

void SelectorFields::putValues(const QList<ChosenValue>& values)
{
  const QScopedValueRollback<int> putting(putting_, putting_ + 1);
  qsizetype done = 0;
  try {
    for (; done < values.size(); ++done)
      setFieldAnyway(values[done].field, values[done].value);
  } catch (...) {
    for (qsizetype i = done - 1; i >= 0; --i)
      if (values[i].field->DataSet()->IsEditing())
        setFieldAnyway(values[i].field, values[i].before);
    throw;
  }
}

}  // namespace kalvor
