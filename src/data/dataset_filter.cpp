// Filters of the view: a text, and a handler that is asked record by record.
#include <QScopeGuard>

#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

FilterField TClientDataSet::Private::columnOf(const QString& fieldName) const
{
  const TField* field = q->FieldByName(fieldName);
  if (field->column_ < 0)
    throw DataError(dataMessage(errFieldWithoutColumn).arg(field->FieldName()));
  return {field->column_, field->type_};
}

FilterProgramPtr TClientDataSet::Private::compileFilterText(const QString& text) const
{
  const FilterNodePtr tree = parseFilter(text);
  if (!tree)
    return nullptr;
  return compileFilter(*tree, [this](const QString& name) { return columnOf(name); }, q->FilterCaseInsensitive);
}

bool TClientDataSet::Private::passesFilterEvent(RowId row)
{
  if (!filtered || !q->OnFilterRecord)
    return true;
  const auto restore = qScopeGuard([this, before = state] { state = before; });
  const ForeignRecord positioned(this, storedRecord(row));
  state = DataSetState::Filter;
  bool accept = true;
  const FilterRecordEvent handler = q->OnFilterRecord;
  handler(q, accept);
  return accept;
}

void TClientDataSet::SetFilter(const QString& text)
{
  if (!Active()) {
    parseFilter(text);
    d->filterText = text;
    return;
  }
  CheckBrowseMode();
  d->compileFilterText(text);
  if (text == d->filterText)
    return;
  d->filterText = text;
  if (d->filtered)
    d->showNewView(true);
}

QString TClientDataSet::Filter() const
{
  return d->filterText;
}

void TClientDataSet::SetFiltered(bool on)
{
  if (!Active()) {
    d->filtered = on;
    return;
  }
  CheckBrowseMode();
  if (on == d->filtered)
    return;
  if (on)
    d->compileFilterText(d->filterText);
  d->filtered = on;
  d->showNewView(true);
}

bool TClientDataSet::Filtered() const
{
  return d->filtered;
}

void TClientDataSet::RefreshFilter()
{
  if (!Active())
    return;
  CheckBrowseMode();
  d->showNewView(false);
}

}  // namespace kalvor
