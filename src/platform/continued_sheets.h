// Sheets that continue a full one: how they are called, and how they become one table again.
#pragma once

#include "platform/text_table.h"

namespace kalvor {

// Of the n-th sheet (from 1) with the contents of that name: "Name", "Name (2)"; what a sheet's name cannot hold is
// left out. A first sheet's own name gives the same further ones.
QString continuedSheetName(const QString& name, int number);

// Takes cells sheet by sheet. A sheet continues the first when the one before it is full, its name says so and its
// first row repeats the first sheet's first row, which is not taken again.
class ContinuedSheets {
 public:
  // Of the current sheet, as TextTable::append. Cells of a sheet that is no continuation are passed over.
  bool append(int row, int column, QStringView text);

  // The current sheet has ended and was full, up to the last of so many rows of its format. True: the sheet of that
  // name is next. DataError when the table has no room for its rows.
  bool goesOn(int rowsOfSheet, const QString& firstName, const QString& nextName);

  TextTable take() { return std::move(table_); }

 private:
  bool repeatsHeadings(int row, int column, QStringView text);

  TextTable table_;
  int sheet_ = 1;
  int firstRow_ = 0;      // the table's row behind which the current sheet's rows come
  int headings_ = 0;      // of the first sheet's cells in its first row, those repeated so far
  bool differs_ = false;
};

}  // namespace kalvor
