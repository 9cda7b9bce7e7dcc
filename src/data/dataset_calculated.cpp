// Calculated fields: computed by OnCalcFields for the record somebody looks at, or once for every record
// (internally calculated: those have a column and may be ordered, filtered and summed by).
#include <QScopeGuard>

#include "data/client_dataset_p.h"

namespace kalvor {

namespace {

FieldDef definitionOf(const TField& field)
{
  FieldDef definition;
  definition.name = field.FieldName();
  definition.type = field.FieldDataType();
  definition.size = field.Size();
  definition.updatable = false;
  return definition;
}

void appendNulls(Column& column, qsizetype rows)
{
  for (qsizetype row = 0; row < rows; ++row)
    column.appendNull();
}

}  // namespace

void TClientDataSet::Private::addCalculatedColumn(TField* field)
{
  calculatedColumns.insert(field, int(calculated.columns.size()));
  calculated.fields.append(definitionOf(*field));
  appendNulls(calculated.columns.emplace_back(storageOf(field->type_)), 1);
  calculated.rows = 1;
  invalidateCalculated();
}

void TClientDataSet::Private::addInternalColumn(TField* field)
{
  const FieldDef definition = definitionOf(*field);
  field->column_ = int(store.fields.size());
  store.fields.append(definition);
  appendNulls(store.columns.emplace_back(storageOf(field->type_)), store.rows);
  log.addColumn(definition);
  if (pending != PendingRecord::None) {
    buffer.fields.append(definition);
    appendNulls(buffer.columns.emplace_back(storageOf(field->type_)), 1);
  }
  calculateInternal(0, RowId(store.rows));
}

void TClientDataSet::Private::ensureCalculated()
{
  const RecordRef record = currentRecord();
  if (calculating || calculatedColumns.isEmpty() || !record || record == calculatedFor)
    return;
  const auto restore = qScopeGuard([this, before = state] {
    state = before;
    calculating = false;
  });
  calculating = true;
  for (Column& column : calculated.columns)
    column.setNull(0);
  calculatedFor = record;
  const ForeignRecord positioned(this, record);
  state = DataSetState::CalcFields;
  call(q->OnCalcFields);
}

void TClientDataSet::Private::calculateInternalAt(RecordRef record, RecordSet* target)
{
  const ForeignRecord positioned(this, record);
  internalTarget = target;
  internalRow = record.row;
  invalidateCalculated();
  call(q->OnCalcFields);
}

void TClientDataSet::Private::calculateInternal(RowId first, RowId last)
{
  if (!hasInternal() || !q->OnCalcFields || calculating)
    return;
  const auto restore = qScopeGuard([this, before = state] {
    state = before;
    calculating = false;
    invalidateCalculated();
  });
  calculating = true;
  state = DataSetState::InternalCalc;
  for (RowId row = first; row < last; ++row)
    calculateInternalAt(storedRecord(row), &store);
}

void TClientDataSet::Private::calculateInternalOfBuffer()
{
  if (!hasInternal() || !q->OnCalcFields || calculating || pending == PendingRecord::None)
    return;
  const auto restore = qScopeGuard([this, before = state] {
    state = before;
    calculating = false;
    invalidateCalculated();
  });
  calculating = true;
  state = DataSetState::InternalCalc;
  calculateInternalAt({&buffer, 0}, &buffer);
}

}  // namespace kalvor
