// Aggregates over the view. While they are active every change moves them by its difference; otherwise they
// are computed when somebody asks.
#include "data/client_dataset_p.h"

namespace kalvor {

void TClientDataSet::Private::leavesAggregates(RowId row)
{
  for (const auto& aggregate : std::as_const(aggregates))
    q->AggregatesActive ? aggregate->leave(store, row) : aggregate->invalidate();
}

void TClientDataSet::Private::entersAggregates(RowId row)
{
  for (const auto& aggregate : std::as_const(aggregates))
    q->AggregatesActive ? aggregate->enter(store, row) : aggregate->invalidate();
}

void TClientDataSet::Private::invalidateAggregates()
{
  for (const auto& aggregate : std::as_const(aggregates))
    aggregate->invalidate();
}

Variant TClientDataSet::Private::aggregateValue(const QString& expression)
{
  std::shared_ptr<Aggregate>& aggregate = aggregates[expression];
  if (!aggregate) {
    try {
      aggregate = std::make_shared<Aggregate>(expression, [this](const QString& name) { return columnOf(name); });
    } catch (const DataError&) {
      aggregates.remove(expression);
      throw;
    }
  }
  return aggregate->value(store, view, view.size() == size_t(store.rows) && pending != PendingRecord::Insert);
}

Variant TClientDataSet::AggregateValue(const QString& expression) const
{
  return Active() ? d->aggregateValue(expression) : Variant();
}

}  // namespace kalvor
