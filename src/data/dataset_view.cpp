// The view: the numbers of the records that are shown, in the order they are shown.
#include <algorithm>
#include <numeric>

#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

void TClientDataSet::Private::viewChanged()
{
  inverseValid = false;
}

qsizetype TClientDataSet::Private::positionOf(RowId row) const
{
  if (row == noRow)
    return -1;
  if (cursor >= 0 && view[size_t(cursor)] == row)
    return cursor;
  if (!inverseValid) {
    inverse.assign(states.size(), noRow);
    for (size_t i = 0; i < view.size(); ++i)
      if (view[i] != noRow)
        inverse[view[i]] = RowId(i);
    inverseValid = true;
  }
  return inverse[row] == noRow ? -1 : qsizetype(inverse[row]);
}

void TClientDataSet::Private::insertIntoView(qsizetype position, RowId row)
{
  const bool atEnd = position == qsizetype(view.size());
  view.insert(view.begin() + position, row);
  if (!atEnd || !inverseValid || row == noRow)
    viewChanged();
  else {
    inverse.resize(states.size(), noRow);
    inverse[row] = RowId(position);
  }
  if (cursor >= position)
    ++cursor;
}

void TClientDataSet::Private::removeFromView(qsizetype position)
{
  view.erase(view.begin() + position);
  viewChanged();
  invalidateCalculated();
  if (cursor > position || cursor >= qsizetype(view.size()))
    --cursor;
}

// --- Building -------------------------------------------------------------------------------------------

std::vector<RowId> TClientDataSet::Private::arrivals() const
{
  if (!order.empty())
    return order;
  std::vector<RowId> rows(size_t(store.rows));
  std::iota(rows.begin(), rows.end(), RowId(0));
  return rows;
}

// Of the candidates, all within [first, last), those that the view shows.
std::vector<RowId> TClientDataSet::Private::acceptedRows(const std::vector<RowId>& candidates, RowId first, RowId last)
{
  RecordMask mask;
  if (filter) {
    mask.resize(last - first);
    filter->evaluate(store, first, last, mask.data());
  }
  const bool tests = hasRowTests();
  std::vector<RowId> accepted;
  accepted.reserve(filter ? 0 : candidates.size());
  for (RowId row : candidates)
    if (isLive(row) && (mask.empty() || mask[row - first]) && (!tests || (inRange(row) && passesFilterEvent(row))))
      accepted.push_back(row);
  return accepted;
}

bool TClientDataSet::Private::accepts(RowId row)
{
  return !acceptedRows({row}, row, row + 1).empty();
}

void TClientDataSet::Private::prepareView()
{
  rowOrder = orderOf(indexNames);
  if (filtered)
    compileFilterText(filterText);
}

void TClientDataSet::Private::dropViewState()
{
  filter.reset();
  rowOrder = RowOrder();
  rangeFrom = rangeTo = RecordSet();
  rangeFromCount = rangeToCount = 0;
  aggregates.clear();
}

void TClientDataSet::Private::rebuildView()
{
  FilterProgramPtr program = filtered ? compileFilterText(filterText) : nullptr;
  std::swap(filter, program);
  std::vector<RowId> rows;
  try {
    rows = acceptedRows(arrivals(), 0, RowId(store.rows));
  } catch (...) {
    std::swap(filter, program);
    throw;
  }
  if (!rowOrder.isEmpty())
    rowOrder.sort(store, rows);
  const RowId keep = currentRow();
  const qsizetype position = cursor;
  view = std::move(rows);
  viewChanged();
  invalidateAggregates();
  cursor = -1;
  goToRow(keep, position);
}

void TClientDataSet::Private::addRowsToView(RowId first, RowId last)
{
  std::vector<RowId> candidates(last - first);
  std::iota(candidates.begin(), candidates.end(), first);
  const std::vector<RowId> added = acceptedRows(candidates, first, last);
  const qsizetype pendingAt = pending == PendingRecord::Insert ? cursor : -1;
  const bool pendingAtEnd = pendingAt >= 0 && pendingAt == qsizetype(view.size()) - 1;
  if (pendingAt >= 0)
    removeFromView(pendingAt);

  constexpr size_t fewRows = 64;
  const RowId keep = pendingAt >= 0 ? noRow : currentRow();
  if (rowOrder.isEmpty()) {
    view.insert(view.end(), added.begin(), added.end());
    viewChanged();
  } else if (added.size() <= fewRows) {
    for (RowId row : added)
      insertIntoView(placeOf(row), row);
  } else {
    std::vector<RowId> rows = view;
    rows.insert(rows.end(), added.begin(), added.end());
    rowOrder.sort(store, rows);
    view = std::move(rows);
    viewChanged();
    cursor = -1;
    if (keep != noRow)
      setCursor(positionOf(keep));
  }
  if (added.size() <= fewRows)
    for (RowId row : added)
      entersAggregates(row);
  else
    invalidateAggregates();

  if (pendingAt >= 0) {
    cursor = -1;
    const qsizetype position = pendingAtEnd ? qsizetype(view.size()) : pendingAt;
    insertIntoView(position, noRow);
    cursor = position;
  } else if (cursor < 0 && !view.empty()) {
    toFirst();
  }
}

qsizetype TClientDataSet::Private::placeOf(RowId row) const
{
  const auto place = std::ranges::upper_bound(
      view, row, [this](RowId a, RowId b) { return rowOrder.compare(storedRecord(a), storedRecord(b)) < 0; });
  return place - view.begin();
}

// The current record, whose values are new, goes where filter and order want it.
void TClientDataSet::Private::placeCurrent(RowId row)
{
  const qsizetype position = cursor;
  if (!accepts(row)) {
    leavesAggregates(row);
    removeFromView(position);
    afterViewLoss(position);
    return;
  }
  bof = eof = false;
  if (rowOrder.isEmpty())
    return;
  const auto inOrder = [this](qsizetype a, qsizetype b) {
    return a < 0 || b >= qsizetype(view.size()) ||
           rowOrder.compare(storedRecord(view[size_t(a)]), storedRecord(view[size_t(b)])) <= 0;
  };
  if (inOrder(position - 1, position) && inOrder(position, position + 1))
    return;
  removeFromView(position);
  const qsizetype place = placeOf(row);
  insertIntoView(place, row);
  setCursor(place);
}

// After a filter, a range or an order was set.
void TClientDataSet::Private::showNewView(bool fromFirst)
{
  call(q->BeforeScroll);
  rebuildView();
  if (fromFirst)
    toFirst();
  try {
    fillEmptyView();
  } catch (...) {
    notify(DataEvent::DataSetChange);
    throw;
  }
  notify(DataEvent::DataSetChange);
  call(q->AfterScroll);
}

// --- Storage --------------------------------------------------------------------------------------------

void TClientDataSet::Private::insertIntoOrder(RowId row, RowId next)
{
  if (order.empty() && next == noRow)
    return;
  if (order.empty()) {
    order.resize(row);
    std::iota(order.begin(), order.end(), RowId(0));
  }
  order.insert(next == noRow ? order.end() : std::ranges::find(order, next), row);
}

void TClientDataSet::Private::fillEmptyView()
{
  while (view.empty() && q->FetchOnDemand && fetchPacket(q->PacketRecords)) {
  }
}

void TClientDataSet::Private::compactWhenWasteful()
{
  if (++editsSinceCompact < 10000)
    return;
  editsSinceCompact = 0;
  for (Column& column : store.columns) {
    size_t used = 0;
    for (const Column::TextSpan& span : column.spans())
      used += span.length;
    if (used * 2 < column.characters().size())
      column.compact();
  }
}

}  // namespace kalvor
