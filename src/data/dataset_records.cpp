// Editing: the record that is being inserted or edited lives in a buffer until it is posted.
#include <QScopeGuard>

#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

DataSetState TClientDataSet::State() const
{
  return d->state;
}

bool TClientDataSet::IsEditing() const
{
  return d->state == DataSetState::Edit || d->state == DataSetState::Insert || d->state == DataSetState::SetKey;
}

bool TClientDataSet::Modified() const
{
  return d->modified;
}

bool TClientDataSet::CanModify() const
{
  return Active() && !ReadOnly;
}

void TClientDataSet::Private::setState(DataSetState newState)
{
  if (state == newState)
    return;
  state = newState;
  if (newState == DataSetState::Browse || newState == DataSetState::Inactive)
    modified = false;
  notify(DataEvent::StateChange);
  call(q->OnStateChange);
}

void TClientDataSet::CheckBrowseMode()
{
  d->checkActive();
  switch (d->state) {
    case DataSetState::Edit:
    case DataSetState::Insert:
      d->notify(DataEvent::UpdateRecord);
      if (!IsEditing())
        return;
      d->modified ? Post() : Cancel();
      break;
    case DataSetState::SetKey: d->setState(DataSetState::Browse); break;
    default: break;
  }
}

void TClientDataSet::Private::beginBuffer()
{
  buffer = RecordSet(store.fields);
  const RowId row = pending == PendingRecord::Edit ? currentRow() : noRow;
  for (size_t i = 0; i < buffer.columns.size(); ++i) {
    if (row == noRow)
      buffer.columns[i].appendNull();
    else
      buffer.columns[i].appendFrom(store.columns[i], row);
  }
  buffer.rows = 1;
  invalidateCalculated();
}

// Runs the operation again and again while the handler says so.
void TClientDataSet::Private::guarded(const DataSetErrorEvent& handler, const std::function<void()>& operation)
{
  for (;;) {
    try {
      operation();
      return;
    } catch (const SilentAbort&) {
      throw;
    } catch (const DataError& error) {
      if (!handler)
        throw;
      ErrorAction action = ErrorAction::Fail;
      const DataSetErrorEvent kept = handler;
      kept(q, error, action);
      if (action == ErrorAction::Abort)
        throw SilentAbort();
      if (action == ErrorAction::Fail)
        throw;
    }
  }
}

void TClientDataSet::Private::storeFieldValue(TField* field, const Variant& converted)
{
  if (state == DataSetState::CalcFields || state == DataSetState::InternalCalc) {
    const int column = calculatedColumns.value(field, -1);
    if (column >= 0)
      setCell(calculated.columns[size_t(column)], field->type_, 0, converted);
    else if (state == DataSetState::InternalCalc && field->column_ >= dataColumns)
      setCell(internalTarget->columns[size_t(field->column_)], field->type_, internalRow, converted);
    return;
  }
  if (state == DataSetState::SetKey) {
    setCell(keyBuffer.columns[size_t(field->column_)], field->type_, 0, converted);
    keyColumns.insert(field->column_);
    notify(DataEvent::RecordChange, field);
    return;
  }
  if (field->OnValidate) {
    const auto restore = qScopeGuard([this, before = validating, value = validatingValue] {
      validating = before;
      validatingValue = value;
    });
    validating = field;
    validatingValue = converted;
    const FieldEvent handler = field->OnValidate;
    handler(field);
  }
  if (pending == PendingRecord::None)
    throw DataError(dataMessage(errNotEditing));
  setCell(buffer.columns[size_t(field->column_)], field->type_, 0, converted);
  modified = true;
  invalidateCalculated();
  calculateInternalOfBuffer();
  if (field->OnChange) {
    const FieldEvent handler = field->OnChange;
    try {
      handler(field);
    } catch (...) {
      notify(DataEvent::RecordChange, field);
      throw;
    }
  }
  notify(DataEvent::RecordChange, field);
}

// --- Append, insert, edit -------------------------------------------------------------------------------

void TClientDataSet::Private::beginInsert(qsizetype position)
{
  insertIntoView(position, noRow);
  pending = PendingRecord::Insert;
  setCursor(position);
  bof = eof = false;
  beginBuffer();
  modified = false;
}

void TClientDataSet::Private::leaveInsert()
{
  const qsizetype position = cursor;
  pending = PendingRecord::None;
  buffer = RecordSet();
  invalidateCalculated();
  removeFromView(position);
}

void TClientDataSet::Private::startInsert(bool append)
{
  q->CheckBrowseMode();
  if (!q->CanModify())
    throw DataError(dataMessage(errDataSetReadOnly));
  call(q->BeforeInsert);
  call(q->BeforeScroll);
  const qsizetype position = append || cursor < 0 ? qsizetype(view.size()) : cursor;
  const RowId before = currentRow();
  beginInsert(position);
  eof = append;
  setState(DataSetState::Insert);
  try {
    call(q->OnNewRecord);
  } catch (...) {
    if (pending == PendingRecord::Insert) {
      leaveInsert();
      goToRow(before, position);
      setState(DataSetState::Browse);
      notify(DataEvent::DataSetChange);
    }
    throw;
  }
  modified = false;
  calculateInternalOfBuffer();
  notify(DataEvent::DataSetChange);
  call(q->AfterInsert);
  call(q->AfterScroll);
}

void TClientDataSet::Append()
{
  d->startInsert(true);
}

void TClientDataSet::Insert()
{
  d->startInsert(false);
}

void TClientDataSet::Edit()
{
  d->checkActive();
  if (d->state == DataSetState::Edit || d->state == DataSetState::Insert)
    return;
  CheckBrowseMode();
  if (IsEmpty()) {
    Insert();
    return;
  }
  const auto checkWritable = [this] {
    if (!CanModify())
      throw DataError(dataMessage(errDataSetReadOnly));
  };
  d->guarded(OnEditError, checkWritable);
  d->call(BeforeEdit);
  d->pending = PendingRecord::Edit;
  d->beginBuffer();
  d->modified = false;
  d->setState(DataSetState::Edit);
  d->notify(DataEvent::RecordChange);
  d->call(AfterEdit);
}

// --- Post -----------------------------------------------------------------------------------------------

void TClientDataSet::Private::checkRequiredFields()
{
  for (const auto& owned : fields) {
    TField* field = owned.get();
    if (!field->Required || field->kind_ != FieldValueKind::Data || field->column_ < 0)
      continue;
    const Column& column = buffer.columns[size_t(field->column_)];
    const bool empty = column.isNull(0) || (column.kind() == StorageKind::Text && column.textAt(0).isEmpty());
    if (!empty)
      continue;
    notify(DataEvent::FocusControl, field);
    throw DataError(requiredFieldMessage(field->DisplayLabel));
  }
}

void TClientDataSet::Post()
{
  d->checkActive();
  if (d->state == DataSetState::SetKey) {
    d->setState(DataSetState::Browse);
    return;
  }
  if (!IsEditing())
    throw DataError(dataMessage(errNotEditing));
  d->notify(DataEvent::UpdateRecord);
  d->call(BeforePost);
  if (d->pending == PendingRecord::None)  // the handler has posted or cancelled
    return;
  d->guarded(OnPostError, [this] {
    d->checkRequiredFields();
    d->calculateInternalOfBuffer();
    d->pending == PendingRecord::Insert ? d->postInsert() : d->postEdit();
  });
  d->setState(DataSetState::Browse);
  d->notify(DataEvent::DataSetChange);
  d->call(AfterPost);
}

void TClientDataSet::Private::postEdit()
{
  const RowId row = currentRow();
  if (modified) {
    leavesAggregates(row);
    if (q->LogChanges)
      log.modified(row, store, states);
    for (size_t i = 0; i < store.columns.size(); ++i)
      store.columns[i].copyRow(row, buffer.columns[i], 0);
    entersAggregates(row);
    compactWhenWasteful();
  }
  pending = PendingRecord::None;
  buffer = RecordSet();
  invalidateCalculated();
  placeCurrent(row);
}

void TClientDataSet::Private::postInsert()
{
  const qsizetype position = cursor;
  const bool between = rowOrder.isEmpty() && position + 1 < qsizetype(view.size());
  const RowId next = between ? view[size_t(position) + 1] : noRow;
  const RowId row = appendToStore(buffer, 0);
  if (q->LogChanges)
    log.inserted(row, states);
  insertIntoOrder(row, next);
  view[size_t(position)] = row;
  viewChanged();
  pending = PendingRecord::None;
  buffer = RecordSet();
  invalidateCalculated();
  entersAggregates(row);
  placeCurrent(row);
}

RowId TClientDataSet::Private::appendToStore(const RecordSet& source, qsizetype row)
{
  for (size_t i = 0; i < store.columns.size(); ++i)
    store.columns[i].appendFrom(source.columns[i], row);
  states.push_back(RowState::Unmodified);
  return RowId(store.rows++);
}

// --- Cancel, delete -------------------------------------------------------------------------------------

void TClientDataSet::Cancel()
{
  d->checkActive();
  if (d->state == DataSetState::SetKey) {
    d->setState(DataSetState::Browse);
    return;
  }
  if (!IsEditing())
    return;
  const bool insert = d->pending == PendingRecord::Insert;
  d->call(BeforeCancel);
  if (insert)
    d->call(BeforeScroll);
  if (d->pending == PendingRecord::None)
    return;
  if (insert) {
    const qsizetype position = d->cursor;
    d->leaveInsert();
    d->goToRow(noRow, position);
  } else {
    d->pending = PendingRecord::None;
    d->buffer = RecordSet();
    d->invalidateCalculated();
  }
  d->setState(DataSetState::Browse);
  d->notify(DataEvent::DataSetChange);
  d->call(AfterCancel);
  if (insert)
    d->call(AfterScroll);
}

void TClientDataSet::Private::deleteCurrent()
{
  pending = PendingRecord::None;
  buffer = RecordSet();
  const qsizetype position = cursor;
  const RowId row = view[size_t(position)];
  leavesAggregates(row);
  if (q->LogChanges)
    log.deleted(row, states);
  else
    states[row] = RowState::Gone;
  removeFromView(position);
  afterViewLoss(position);
}

void TClientDataSet::Delete()
{
  d->checkActive();
  if (d->state == DataSetState::Insert || d->state == DataSetState::SetKey) {
    Cancel();
    return;
  }
  if (IsEmpty())
    throw DataError(dataMessage(errDataSetEmpty));
  d->call(BeforeDelete);
  d->call(BeforeScroll);
  d->guarded(OnDeleteError, [this] {
    if (!CanModify())
      throw DataError(dataMessage(errDataSetReadOnly));
  });
  d->deleteCurrent();
  d->setState(DataSetState::Browse);
  d->notify(DataEvent::DataSetChange);
  d->call(AfterDelete);
  d->call(AfterScroll);
}

void TClientDataSet::AppendRecord(const VariantArray& values)
{
  Append();
  try {
    int position = 0;
    for (TField* field : Fields()) {
      if (position >= values.size())
        break;
      if (field->FieldKind() == FieldValueKind::Data)
        field->SetValue(values[position++]);
    }
    Post();
  } catch (...) {
    if (d->pending == PendingRecord::Insert)
      Cancel();
    throw;
  }
}

}  // namespace kalvor
