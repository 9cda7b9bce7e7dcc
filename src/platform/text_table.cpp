#include "platform/text_table.h"

#include <algorithm>

#include "data/data_error.h"

namespace kalvor {

QStringView TextTable::text(int row, int column) const
{
  if (row < 0 || row >= rowCount_)
    return {};
  const auto first = cells_.begin() + rows_[size_t(row)];
  const auto last = row + 1 < rowCount_ ? cells_.begin() + rows_[size_t(row) + 1] : cells_.end();
  const auto cell = std::lower_bound(first, last, column, [](const Cell& c, int wanted) { return c.column < wanted; });
  if (cell == last || cell->column != column)
    return {};
  const qsizetype end = cell + 1 == cells_.end() ? characters_.size() : (cell + 1)->start;
  return QStringView(characters_).sliced(cell->start, end - cell->start);
}

bool TextTable::append(int row, int column, QStringView text)
{
  if (row < rowCount_ - 1 || row < 0 || column < 0)
    return false;
  if (row == rowCount_ - 1 && !cells_.empty() && cells_.back().column >= column)
    return false;
  if (text.isEmpty())
    return true;
  if (row >= mostRows || column >= mostColumns || qsizetype(cells_.size()) >= mostCells ||
      characters_.size() + text.size() > mostCharacters)
    throw DataError(QStringLiteral("Таблицата е твърде голяма."));
  rows_.resize(size_t(row) + 1, qsizetype(cells_.size()));
  cells_.push_back({column, quint32(characters_.size())});
  characters_ += text;
  rowCount_ = row + 1;
  columnCount_ = std::max(columnCount_, column + 1);
  return true;
}

}  // namespace kalvor
