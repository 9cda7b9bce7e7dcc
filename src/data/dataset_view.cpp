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
