// A table of texts as spreadsheets and transformed XML files give it: filled row by row, kept compactly.
#pragma once

#include <QString>
#include <vector>

#include "layer_export.h"

namespace kalvor {

// Rows and columns count from 0; a cell that was never put in is the empty text. What goes beyond the limits raises
// DataError.
class KALVOR_PLATFORM TextTable {
 public:
  static constexpr int mostRows = 1 << 22;
  static constexpr int mostColumns = 1 << 14;
  static constexpr qsizetype mostCells = 16'000'000;
  static constexpr qsizetype mostCharacters = 256'000'000;

  // Up to the last row, and to the last column, that holds a text.
  int rowCount() const { return rowCount_; }
  int columnCount() const { return columnCount_; }
  QStringView text(int row, int column) const;

  // Cells come row by row, those of a row from left to right. False: this one comes too late.
  bool append(int row, int column, QStringView text);

 private:
  struct Cell {
    int column;
    quint32 start;  // in the characters; the text ends where the next cell's begins
  };
  std::vector<Cell> cells_;
  std::vector<qsizetype> rows_;  // the first cell of each row
  QString characters_;
  int rowCount_ = 0;
  int columnCount_ = 0;
};

}  // namespace kalvor
