// A table of texts with a title row: what a string grid shows and its rules read and write.
#pragma once

#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor {

// Row 0 holds the titles. Reading outside the table gives the empty text, writing there does nothing.
class KALVOR_DATA StringTable {
 public:
  explicit StringTable(int columns = 0, int rows = 1);

  int ColCount() const { return columns_; }
  int RowCount() const { return int(rows_.size()); }  // with the title row
  void SetRowCount(int rows);                         // at least the title row; new rows are empty
  QString Cells(int column, int row) const;
  void SetCells(int column, int row, const QString& text);
  void setTitles(const QStringList& titles);
  void insertRow(int row);                            // before it; past the end = at the end
  void removeRow(int row);                            // titles stay
  void moveRow(int from, int to);                     // both below the titles
  void clearRow(int row);
  bool isRowEmpty(int row) const;

  // Whoever shows the table: one cell changed, or anything did.
  std::function<void(int column, int row)> OnCellChanged;
  std::function<void()> OnRowsChanged;

 private:
  void rowsChanged();

  int columns_;
  QList<QStringList> rows_;
};

}  // namespace kalvor
