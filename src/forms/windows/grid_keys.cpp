#include "forms/windows/grid_keys.h"

#include "widgets/db_grid.h"

namespace kalvor {

namespace {

bool atLastRecord(const TClientDataSet& dataSet)
{
  return dataSet.Eof() || (dataSet.AllFetched() && dataSet.RecNo() >= dataSet.RecordCount());
}

void moveForward(TDBGrid& grid, TClientDataSet& dataSet, bool masterEditing)
{
  const bool editing = dataSet.IsEditing();
  if (grid.selectNextColumn(editing)) {
    return;
  }
  if (!atLastRecord(dataSet)) {
    dataSet.Next();
  } else if (!grid.readOnly() && masterEditing && dataSet.CanModify()) {
    dataSet.CheckBrowseMode();
    dataSet.Append();
  }
  grid.selectFirstWritableColumn();
}

void moveBack(TDBGrid& grid, TClientDataSet& dataSet)
{
  if (grid.selectPriorColumn(dataSet.IsEditing())) {
    return;
  }
  if (dataSet.RecNo() > 1) {
    dataSet.Prior();
  }
  grid.selectLastWritableColumn();
}

}  // namespace

bool handleGridKey(TDBGrid& grid, const QKeyEvent& event, const GridKeyFacts& facts)
{
  const bool control = event.modifiers().testFlag(Qt::ControlModifier);
  if (event.key() == Qt::Key_Delete && control) {
    return true;
  }
  const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  TClientDataSet* dataSet = grid.dataSet();
  if (!enter || control || !dataSet || !dataSet->Active()) {
    return false;
  }
  if (facts.selectionMode && !dataSet->IsEditing()) {
    return false;
  }
  if (grid.commitCell()) {
    event.modifiers().testFlag(Qt::ShiftModifier) ? moveBack(grid, *dataSet)
                                                  : moveForward(grid, *dataSet, facts.masterEditing);
  }
  return true;
}

}  // namespace kalvor
