// Key search: the index fields take the wanted values in set-key state, then the dataset goes there.
#include <algorithm>

#include "data/client_dataset_p.h"
#include "data/messages.h"
#include "data/value_matcher.h"

namespace kalvor {

size_t TClientDataSet::Private::keyFieldCount() const
{
  size_t count = 0;
  for (const IndexField& field : rowOrder.fields()) {
    if (!keyColumns.contains(field.column))
      break;
    ++count;
  }
  return count;
}

qsizetype TClientDataSet::Private::lowerBoundOfKey() const
{
  const RecordRef key{&keyBuffer, 0};
  const size_t count = keyFieldCount();
  const auto place = std::ranges::lower_bound(view, key, [this, count](RecordRef a, RecordRef b) {
    return rowOrder.compare(a, b, count) < 0;
  }, [this](RowId row) { return storedRecord(row); });
  return place - view.begin();
}

// The order does not look at the case of letters, a key does: among equals in order the exact one counts.
qsizetype TClientDataSet::Private::findKeyBuffer() const
{
  const RecordRef key{&keyBuffer, 0};
  const size_t count = keyFieldCount();
  if (count == 0)
    return -1;
  std::vector<ValueMatcher> matchers;
  for (size_t i = 0; i < count; ++i) {
    const int column = rowOrder.fields()[i].column;
    matchers.emplace_back(store.fields[column].type, keyBuffer.value(0, column), LocateOptions());
  }
  for (qsizetype position = lowerBoundOfKey(); position < qsizetype(view.size()); ++position) {
    const RowId row = view[size_t(position)];
    if (rowOrder.compare(storedRecord(row), key, count) != 0)
      break;
    bool all = true;
    for (size_t i = 0; all && i < count; ++i)
      all = matchers[i].matches(store.columns[size_t(rowOrder.fields()[i].column)], row);
    if (all)
      return position;
  }
  return -1;
}

void TClientDataSet::SetKey()
{
  CheckBrowseMode();
  if (d->rowOrder.isEmpty())
    throw DataError(dataMessage(errNoIndex));
  d->keyBuffer = RecordSet(d->store.fields);
  d->keyBuffer.appendRow({});
  d->keyColumns.clear();
  d->invalidateCalculated();
  d->setState(DataSetState::SetKey);
  d->notify(DataEvent::RecordChange);
}

bool TClientDataSet::GotoKey()
{
  CheckBrowseMode();
  if (d->keyBuffer.rows == 0)
    throw DataError(dataMessage(errNoIndex));
  qsizetype position = d->findKeyBuffer();
  if (position < 0 && !AllFetched()) {
    FetchAll();
    position = d->findKeyBuffer();
  }
  if (position < 0) {
    d->notify(DataEvent::RecordChange);
    return false;
  }
  d->moveTo(position);
  return true;
}

void TClientDataSet::GotoNearest()
{
  CheckBrowseMode();
  if (d->keyBuffer.rows == 0)
    throw DataError(dataMessage(errNoIndex));
  FetchAll();
  if (IsEmpty())
    return;
  d->moveTo(std::min(d->lowerBoundOfKey(), RecordCount() - 1));
}

}  // namespace kalvor
