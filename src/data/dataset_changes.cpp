// The change log of a client dataset, as its users see it.
#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

int TClientDataSet::ChangeCount() const
{
  return d->log.changeCount();
}

kalvor::UpdateStatus TClientDataSet::UpdateStatus() const
{
  if (!Active() || IsEmpty())
    return kalvor::UpdateStatus::Unmodified;
  const RowId row = d->currentRow();
  return row == noRow ? kalvor::UpdateStatus::Inserted : updateStatusOf(d->states[row]);
}

kalvor::UpdateStatus TClientDataSet::UpdateStatusOfRow(qsizetype row) const
{
  if (row < 0 || row >= RecordCount())
    return kalvor::UpdateStatus::Unmodified;
  const RowId id = d->view[size_t(row)];
  return id == noRow ? kalvor::UpdateStatus::Inserted : updateStatusOf(d->states[id]);
}

// After records came back, changed or went behind the view.
void TClientDataSet::Private::showAfterUndo(RowId follow)
{
  const RowId keep = currentRow();
  const qsizetype position = cursor;
  invalidateAggregates();
  rebuildView();
  goToRow(follow != noRow && positionOf(follow) >= 0 ? follow : keep, position);
  notify(DataEvent::DataSetChange);
}

bool TClientDataSet::UndoLastChange(bool followChange)
{
  d->checkActive();
  Cancel();
  if (d->log.isEmpty())
    return false;
  d->call(BeforeScroll);
  const ChangeLog::Step step = d->log.undoLast(d->store, d->states);
  d->showAfterUndo(followChange ? step.row : noRow);
  d->call(AfterScroll);
  return true;
}

void TClientDataSet::RevertRecord()
{
  d->checkActive();
  if (IsEditing()) {
    const bool wasInsert = d->pending == PendingRecord::Insert;
    Cancel();
    if (wasInsert)
      return;
  }
  const RowId row = d->currentRow();
  if (row == noRow || d->states[row] == RowState::Unmodified)
    return;
  d->call(BeforeScroll);
  d->log.revert(row, d->store, d->states);
  d->showAfterUndo(noRow);
  d->call(AfterScroll);
}

void TClientDataSet::CancelUpdates()
{
  d->checkActive();
  Cancel();
  if (d->log.isEmpty())
    return;
  d->call(BeforeScroll);
  d->log.revertAll(d->store, d->states);
  d->showAfterUndo(noRow);
  d->call(AfterScroll);
}

void TClientDataSet::MergeChangeLog()
{
  d->checkActive();
  CheckBrowseMode();
  d->log.merge(d->states);
  d->notify(DataEvent::DataSetChange);
}

QList<Bookmark> TClientDataSet::DeletedRecords() const
{
  QList<Bookmark> bookmarks;
  for (RowId row : d->log.changedRows(d->states))
    if (d->states[row] == RowState::Deleted)
      bookmarks.append(d->bookmarkOf(row));
  return bookmarks;
}

// --- Delta ----------------------------------------------------------------------------------------------

DeltaPtr TClientDataSet::GetDelta() const
{
  if (!Active() || d->log.changeCount() == 0)
    return nullptr;
  auto delta = std::make_shared<Delta>();
  delta->records = RecordSet(d->store.fields.first(d->dataColumns));
  for (const auto& field : d->fields)
    if (field->kind_ == FieldValueKind::Data && field->column_ >= 0)
      delta->records.fields[field->column_].updatable = field->InUpdate;

  const auto add = [&](const RecordSet& source, qsizetype row, kalvor::UpdateStatus status) {
    for (size_t i = 0; i < delta->records.columns.size(); ++i)
      delta->records.columns[i].appendFrom(source.columns[i], row);
    ++delta->records.rows;
    delta->status.push_back(status);
  };
  for (RowId row : d->log.changedRows(d->states)) {
    const qsizetype original = d->log.originalOf(row);
    const RecordSet& before = original >= 0 ? d->log.images() : d->store;
    const qsizetype beforeRow = original >= 0 ? original : qsizetype(row);
    switch (d->states[row]) {
      case RowState::Inserted: add(d->store, row, kalvor::UpdateStatus::Inserted); break;
      case RowState::Deleted: add(before, beforeRow, kalvor::UpdateStatus::Deleted); break;
      case RowState::Modified:
        add(before, beforeRow, kalvor::UpdateStatus::Unmodified);
        add(d->store, row, kalvor::UpdateStatus::Modified);
        break;
      default: break;
    }
  }
  return delta;
}

}  // namespace kalvor
