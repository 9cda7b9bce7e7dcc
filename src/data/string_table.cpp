#include "data/string_table.h"

#include <algorithm>

namespace kalvor {

StringTable::StringTable(int columns, int rows) : columns_(columns)
{
  SetRowCount(rows);
}

void StringTable::rowsChanged()
{
  if (OnRowsChanged) {
    OnRowsChanged();
  }
}

void StringTable::SetRowCount(int rows)
{
  const qsizetype wanted = std::max(rows, 1);
  if (wanted == rows_.size()) {
    return;
  }
  while (rows_.size() < wanted) {
    rows_.append(QStringList(columns_));
  }
  rows_.resize(wanted);
  rowsChanged();
}

QString StringTable::Cells(int column, int row) const
{
  return row < 0 || row >= RowCount() || column < 0 || column >= columns_ ? QString() : rows_[row][column];
}

void StringTable::SetCells(int column, int row, const QString& text)
{
  if (row < 0 || row >= RowCount() || column < 0 || column >= columns_ || rows_[row][column] == text) {
    return;
  }
  rows_[row][column] = text;
  if (OnCellChanged) {
    OnCellChanged(column, row);
  }
}

void StringTable::setTitles(const QStringList& titles)
{
  rows_[0] = titles;
  rows_[0].resize(columns_);
  rowsChanged();
}

void StringTable::insertRow(int row)
{
  rows_.insert(std::clamp(row, 1, RowCount()), QStringList(columns_));
  rowsChanged();
}

void StringTable::removeRow(int row)
{
  if (row < 1 || row >= RowCount()) {
    return;
  }
  rows_.removeAt(row);
  rowsChanged();
}

void StringTable::moveRow(int from, int to)
{
  if (from < 1 || to < 1 || from >= RowCount() || to >= RowCount() || from == to) {
    return;
  }
  rows_.move(from, to);
  rowsChanged();
}

void StringTable::clearRow(int row)
{
  for (int column = 0; column < columns_; ++column) {
    SetCells(column, row, QString());
  }
}

bool StringTable::isRowEmpty(int row) const
{
  return row < 0 || row >= RowCount() ||
         std::ranges::all_of(rows_[row], [](const QString& text) { return text.isEmpty(); });
}

}  // namespace kalvor
