#include "data/client_dataset_p.h"

namespace kalvor {

namespace {

[[noreturn]] void notReadyYet()
{
  throw DataError(QStringLiteral("Not available yet"));
}

}  // namespace

void TClientDataSet::Private::prepareView() {}
void TClientDataSet::Private::dropViewState() {}
bool TClientDataSet::Private::accepts(RowId row) { return isLive(row); }

void TClientDataSet::Private::rebuildView()
{
  const RowId keep = currentRow();
  const qsizetype position = cursor;
  view.clear();
  const auto take = [this](RowId row) {
    if (accepts(row))
      view.push_back(row);
  };
  if (order.empty())
    for (RowId row = 0; row < RowId(store.rows); ++row)
      take(row);
  else
    for (RowId row : order)
      take(row);
  viewChanged();
  cursor = -1;
  goToRow(keep, position);
}

void TClientDataSet::Private::addRowsToView(RowId first, RowId last)
{
  qsizetype end = qsizetype(view.size()) - (pending == PendingRecord::Insert && cursor == qsizetype(view.size()) - 1);
  for (RowId row = first; row < last; ++row)
    if (accepts(row))
      insertIntoView(end++, row);
}

void TClientDataSet::Private::placeCurrent(RowId) {}
void TClientDataSet::Private::leavesAggregates(RowId) {}
void TClientDataSet::Private::entersAggregates(RowId) {}
void TClientDataSet::Private::invalidateAggregates() {}

void TClientDataSet::SetFilter(const QString&) { notReadyYet(); }
QString TClientDataSet::Filter() const { return {}; }
void TClientDataSet::SetFiltered(bool) { notReadyYet(); }
bool TClientDataSet::Filtered() const { return false; }
void TClientDataSet::SetIndexFieldNames(const QString&) { notReadyYet(); }
QString TClientDataSet::IndexFieldNames() const { return {}; }
void TClientDataSet::SetGroupingLevel(int) { notReadyYet(); }
int TClientDataSet::GroupingLevel() const { return 0; }
TClientDataSet::GroupPosition TClientDataSet::GetGroupState(int) const { notReadyYet(); }
Variant TClientDataSet::AggregateValue(const QString&) const { notReadyYet(); }
void TClientDataSet::SetRange(const VariantArray&, const VariantArray&) { notReadyYet(); }
void TClientDataSet::CancelRange() {}
void TClientDataSet::SetKey() { notReadyYet(); }
bool TClientDataSet::GotoKey() { notReadyYet(); }
void TClientDataSet::GotoNearest() { notReadyYet(); }
QByteArray TClientDataSet::XMLData() const { notReadyYet(); }
void TClientDataSet::SetXMLData(const QByteArray&) { notReadyYet(); }
void TClientDataSet::SaveToFile(const QString&) const { notReadyYet(); }
void TClientDataSet::LoadFromFile(const QString&) { notReadyYet(); }
void TClientDataSet::RefreshFilter() {}

}  // namespace kalvor
