// Moving over the view: the cursor, its ends, bookmarks.
#include <algorithm>

#include "data/client_dataset_p.h"

namespace kalvor {

ForeignRecord::ForeignRecord(TClientDataSet::Private* d, RecordRef record, qsizetype viewRow)
    : d_(d), before_(d->foreign), rowBefore_(d->foreignRow)
{
  d_->foreign = record;
  d_->foreignRow = viewRow;
}

ForeignRecord::~ForeignRecord()
{
  d_->foreign = before_;
  d_->foreignRow = rowBefore_;
}

RecordRef TClientDataSet::Private::recordOfViewRow(qsizetype row) const
{
  if (row < 0 || row >= qsizetype(view.size()))
    return {};
  return row == cursor && pending != PendingRecord::None ? RecordRef{&buffer, 0} : storedRecord(view[size_t(row)]);
}

RecordRef TClientDataSet::Private::currentRecord() const
{
  if (foreign)
    return foreign;
  if (state == DataSetState::SetKey)
    return {&keyBuffer, 0};
  return recordOfViewRow(cursor);
}

RowId TClientDataSet::Private::currentRow() const
{
  if (foreign && foreign.records == &store)
    return RowId(foreign.row);
  return cursor < 0 ? noRow : view[size_t(cursor)];
}

void TClientDataSet::Private::setCursor(qsizetype position)
{
  cursor = position;
  invalidateCalculated();
}

void TClientDataSet::Private::toFirst()
{
  setCursor(view.empty() ? -1 : 0);
  bof = true;
  eof = view.empty();
}

void TClientDataSet::Private::goToRow(RowId row, qsizetype otherwise)
{
  const qsizetype position = row == noRow ? -1 : positionOf(row);
  setCursor(position >= 0 ? position : std::clamp<qsizetype>(otherwise, -1, qsizetype(view.size()) - 1));
  if (cursor < 0 && !view.empty())
    setCursor(0);
  bof = eof = view.empty();
}

// The record after the lost one is current. Where there is none the end is reached, so that a loop which
// deletes while it goes sees every record once.
void TClientDataSet::Private::afterViewLoss(qsizetype position)
{
  try {
    while (position >= qsizetype(view.size()) && q->FetchOnDemand && fetchPacket(q->PacketRecords)) {
    }
  } catch (const DataError&) {
    // What was done to the record stands. Whoever moves on is told that the server does not answer.
  }
  goToRow(noRow, position);
  eof = position >= qsizetype(view.size());
}

void TClientDataSet::Private::moveTo(qsizetype position)
{
  call(q->BeforeScroll);
  setCursor(position);
  bof = eof = false;
  notify(DataEvent::Scroll);
  call(q->AfterScroll);
}

void TClientDataSet::First()
{
  CheckBrowseMode();
  d->call(BeforeScroll);
  d->fillEmptyView();
  d->toFirst();
  d->notify(DataEvent::Scroll);
  d->call(AfterScroll);
}

void TClientDataSet::Last()
{
  CheckBrowseMode();
  d->call(BeforeScroll);
  if (FetchOnDemand)
    FetchAll();
  d->setCursor(qsizetype(d->view.size()) - 1);
  d->bof = d->view.empty();
  d->eof = true;
  d->notify(DataEvent::Scroll);
  d->call(AfterScroll);
}

void TClientDataSet::Next()
{
  MoveBy(1);
}

void TClientDataSet::Prior()
{
  MoveBy(-1);
}

qsizetype TClientDataSet::MoveBy(qsizetype distance)
{
  CheckBrowseMode();
  if (distance == 0 || (distance > 0 ? d->eof : d->bof))
    return 0;
  d->call(BeforeScroll);
  // A packet may bring records before the current one where the view is ordered.
  while (d->cursor + distance >= qsizetype(d->view.size()) && d->fetchOnDemand()) {
  }
  const qsizetype last = qsizetype(d->view.size()) - 1;
  const qsizetype from = d->cursor;
  const qsizetype target = from + distance;
  d->eof = target > last;
  d->bof = target < 0;
  d->setCursor(std::clamp<qsizetype>(target, std::min<qsizetype>(0, last), last));
  const qsizetype moved = d->cursor - from;
  d->notify(DataEvent::Scroll);
  d->call(AfterScroll);
  return moved;
}

bool TClientDataSet::Bof() const
{
  return d->bof;
}

bool TClientDataSet::Eof() const
{
  return d->eof;
}

bool TClientDataSet::IsEmpty() const
{
  return d->view.empty();
}

qsizetype TClientDataSet::RecordCount() const
{
  return qsizetype(d->view.size());
}

qsizetype TClientDataSet::RecNo() const
{
  return d->cursor + 1;
}

void TClientDataSet::SetRecNo(qsizetype number)
{
  CheckBrowseMode();
  if (number != RecNo())
    MoveBy(number - RecNo());
}

// --- Bookmarks ------------------------------------------------------------------------------------------

Bookmark TClientDataSet::Private::bookmarkOf(RowId row) const
{
  return row == noRow ? noBookmark : Bookmark(epoch) << 32 | row;
}

RowId TClientDataSet::Private::rowOf(Bookmark bookmark) const
{
  const RowId row = RowId(bookmark & 0xFFFFFFFF);
  const bool known = bookmark >= 0 && Bookmark(epoch) == bookmark >> 32 && row < states.size() && isLive(row);
  return known ? row : noRow;
}

Bookmark TClientDataSet::GetBookmark() const
{
  return d->bookmarkOf(d->currentRow());
}

bool TClientDataSet::BookmarkValid(Bookmark bookmark) const
{
  return d->rowOf(bookmark) != noRow;
}

bool TClientDataSet::GotoBookmark(Bookmark bookmark)
{
  CheckBrowseMode();
  const qsizetype position = RowOfBookmark(bookmark);
  if (position < 0)
    return false;
  d->moveTo(position);
  return true;
}

qsizetype TClientDataSet::RowOfBookmark(Bookmark bookmark) const
{
  const RowId row = d->rowOf(bookmark);
  return row == noRow ? -1 : d->positionOf(row);
}

qsizetype TClientDataSet::StoredRow(qsizetype row) const
{
  if (row < 0 || row >= RecordCount())
    return -1;
  const RowId stored = d->view[size_t(row)];
  return stored == noRow ? -1 : qsizetype(stored);
}

Bookmark TClientDataSet::BookmarkOfRow(qsizetype row) const
{
  return row < 0 || row >= RecordCount() ? noBookmark : d->bookmarkOf(d->view[size_t(row)]);
}

}  // namespace kalvor
