// The order of the view by fields, groups of equal values in it, ranges of it.
#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

RowOrder TClientDataSet::Private::orderOf(const QString& names) const
{
  std::vector<IndexField> index;
  for (QString name : splitNames(names)) {
    IndexField field;
    for (const char16_t* direction : {u" DESC", u" ASC"}) {
      const QStringView suffix(direction);
      if (name.endsWith(suffix, Qt::CaseInsensitive)) {
        name = name.chopped(suffix.size()).trimmed();
        field.descending = suffix == u" DESC";
        break;
      }
    }
    field.column = columnOf(name).column;
    index.push_back(field);
  }
  return RowOrder(std::move(index));
}

void TClientDataSet::SetIndexFieldNames(const QString& names)
{
  if (!Active()) {
    d->indexNames = names;
    return;
  }
  CheckBrowseMode();
  if (names == d->indexNames)
    return;
  RowOrder order = d->orderOf(names);
  d->indexNames = names;
  d->rowOrder = std::move(order);
  d->rangeFromCount = d->rangeToCount = 0;
  d->rebuildView();
  d->notify(DataEvent::DataSetChange);
}

QString TClientDataSet::IndexFieldNames() const
{
  return d->indexNames;
}

// --- Groups ---------------------------------------------------------------------------------------------

void TClientDataSet::SetGroupingLevel(int levels)
{
  d->groupingLevel = qMax(0, levels);
}

int TClientDataSet::GroupingLevel() const
{
  return d->groupingLevel;
}

TClientDataSet::GroupPosition TClientDataSet::GetGroupState(int level) const
{
  const size_t fields = std::min<size_t>(size_t(qMax(0, level)), d->rowOrder.fields().size());
  if (level < 1 || level > d->groupingLevel || fields == 0 || IsEmpty())
    return {false, false, false};
  const auto sameGroup = [this, fields](qsizetype a, qsizetype b) {
    const RecordRef left = d->recordOfViewRow(a);
    const RecordRef right = d->recordOfViewRow(b);
    return left && right && d->rowOrder.compare(left, right, fields) == 0;
  };
  const qsizetype row = d->foreignRow >= 0 ? d->foreignRow : d->cursor;
  const bool first = !sameGroup(row - 1, row);
  const bool last = !sameGroup(row, row + 1);
  return {first, !first && !last, last};
}

// --- Ranges ---------------------------------------------------------------------------------------------

RecordSet TClientDataSet::Private::rangeBound(const VariantArray& values) const
{
  if (rowOrder.isEmpty())
    throw DataError(dataMessage(errNoIndex));
  if (values.size() > qsizetype(rowOrder.fields().size()))
    throw DataError(dataMessage(errKeyValues));
  RecordSet bound(store.fields);
  bound.appendRow({});
  for (qsizetype i = 0; i < values.size(); ++i) {
    const int column = rowOrder.fields()[size_t(i)].column;
    if (!setCell(bound.columns[size_t(column)], store.fields[column].type, 0, values[i]))
      throw DataError(dataMessage(errInvalidValue).arg(store.fields[column].name, variantText(values[i])));
  }
  return bound;
}

bool TClientDataSet::Private::inRange(RowId row) const
{
  const RecordRef record = storedRecord(row);
  return (rangeFromCount == 0 || rowOrder.compare(record, {&rangeFrom, 0}, rangeFromCount) >= 0) &&
         (rangeToCount == 0 || rowOrder.compare(record, {&rangeTo, 0}, rangeToCount) <= 0);
}

void TClientDataSet::SetRange(const VariantArray& from, const VariantArray& to)
{
  CheckBrowseMode();
  RecordSet low = d->rangeBound(from);
  RecordSet high = d->rangeBound(to);
  d->rangeFrom = std::move(low);
  d->rangeTo = std::move(high);
  d->rangeFromCount = size_t(from.size());
  d->rangeToCount = size_t(to.size());
  d->showNewView(true);
}

void TClientDataSet::CancelRange()
{
  if (!Active() || d->rangeFromCount + d->rangeToCount == 0)
    return;
  CheckBrowseMode();
  d->rangeFromCount = d->rangeToCount = 0;
  d->showNewView(false);
}

}  // namespace kalvor
