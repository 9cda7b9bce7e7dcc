#include "data/change_log.h"

#include <algorithm>
#include <unordered_set>

namespace kalvor {

namespace {

bool countsAsChange(RowState state)
{
  return state != RowState::Unmodified && state != RowState::Gone;
}

qsizetype appendImage(RecordSet& images, const RecordSet& source, qsizetype row)
{
  for (size_t i = 0; i < images.columns.size(); ++i)
    images.columns[i].appendFrom(source.columns[i], row);
  return images.rows++;
}

}  // namespace

void ChangeLog::reset(QList<FieldDef> fields)
{
  *this = ChangeLog();
  images_ = RecordSet(std::move(fields));
}

void ChangeLog::addColumn(const FieldDef& field)
{
  images_.fields.append(field);
  Column& column = images_.columns.emplace_back(storageOf(field.type));
  for (qsizetype row = 0; row < images_.rows; ++row)
    column.appendNull();
}

void ChangeLog::setState(RowId row, RowState state, std::vector<RowState>& states)
{
  changeCount_ += int(countsAsChange(state)) - int(countsAsChange(states[row]));
  states[row] = state;
}

void ChangeLog::addStep(RowId row, RowState after, qsizetype image, std::vector<RowState>& states)
{
  steps_.push_back({row, states[row], after, image});
  setState(row, after, states);
}

void ChangeLog::inserted(RowId row, std::vector<RowState>& states)
{
  states[row] = RowState::Gone;
  addStep(row, RowState::Inserted, -1, states);
}

void ChangeLog::modified(RowId row, const RecordSet& store, std::vector<RowState>& states)
{
  const qsizetype image = appendImage(images_, store, row);
  if (states[row] == RowState::Unmodified)
    originals_.insert(row, image);
  addStep(row, states[row] == RowState::Inserted ? RowState::Inserted : RowState::Modified, image, states);
}

void ChangeLog::deleted(RowId row, std::vector<RowState>& states)
{
  addStep(row, states[row] == RowState::Inserted ? RowState::Gone : RowState::Deleted, -1, states);
}

void ChangeLog::restoreImage(RowId row, qsizetype image, RecordSet& store)
{
  for (size_t i = 0; i < images_.columns.size(); ++i)
    store.columns[i].copyRow(row, images_.columns[i], image);
}

ChangeLog::Step ChangeLog::undoLast(RecordSet& store, std::vector<RowState>& states)
{
  const Step step = steps_.back();
  steps_.pop_back();
  if (step.image >= 0)
    restoreImage(step.row, step.image, store);
  setState(step.row, step.before, states);
  if (step.before == RowState::Unmodified)
    originals_.remove(step.row);
  dropImages();
  return step;
}

void ChangeLog::revert(RowId row, RecordSet& store, std::vector<RowState>& states)
{
  const auto first = std::ranges::find(steps_, row, &Step::row);
  if (first == steps_.end())
    return;
  if (const qsizetype original = originalOf(row); original >= 0)
    restoreImage(row, original, store);
  setState(row, first->before, states);
  originals_.remove(row);
  std::erase_if(steps_, [row](const Step& step) { return step.row == row; });
  dropImages();
}

void ChangeLog::revertAll(RecordSet& store, std::vector<RowState>& states)
{
  for (auto it = originals_.cbegin(); it != originals_.cend(); ++it)
    restoreImage(it.key(), it.value(), store);
  for (auto step = steps_.crbegin(); step != steps_.crend(); ++step)
    setState(step->row, step->before, states);
  reset(images_.fields);
}

void ChangeLog::merge(std::vector<RowState>& states)
{
  for (const Step& step : steps_) {
    RowState& state = states[step.row];
    state = state < RowState::Deleted ? RowState::Unmodified : RowState::Gone;
  }
  reset(images_.fields);
}

std::vector<RowId> ChangeLog::changedRows(const std::vector<RowState>& states) const
{
  std::vector<RowId> rows;
  std::unordered_set<RowId> seen;
  for (const Step& step : steps_)
    if (countsAsChange(states[step.row]) && seen.insert(step.row).second)
      rows.push_back(step.row);
  return rows;
}

void ChangeLog::restore(RowId row, RowState state, const RecordSet& original, qsizetype originalRow,
                        std::vector<RowState>& states)
{
  qsizetype image = -1;
  if (originalRow >= 0) {
    image = appendImage(images_, original, originalRow);
    originals_.insert(row, image);
  }
  states[row] = state == RowState::Inserted ? RowState::Gone : RowState::Unmodified;
  if (state == RowState::Deleted && originalRow >= 0)
    addStep(row, RowState::Modified, image, states);
  addStep(row, state, state == RowState::Deleted ? -1 : image, states);
}

void ChangeLog::dropImages()
{
  if (steps_.empty() && images_.rows > 0)
    reset(images_.fields);
}

}  // namespace kalvor
