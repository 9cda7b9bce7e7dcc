// Rows of a spreadsheet on their way into a dataset: read, tried, and kept only when the user says so.
#pragma once

#include <functional>

#include "data/client_dataset.h"

namespace kalvor {

// A copied text as a table: lines, cells between tabs; a cell in double quotes may hold tabs and line ends, a doubled
// quote stands for one. The empty line at the end is none.
KALVOR_RULES QList<QStringList> pastedTable(const QString& text);

struct PastedRow {
  QStringList cells;  // one a column; empty where the row was shorter
  QString problem;    // empty: the row fits
  Bookmark record = noBookmark;
};

// Appends the rows to the dataset as a person would type them, each whole or not at all: the fields' own conversion,
// validation and handlers, then the post with its rules. Controls see nothing of it until keep(); what is not kept is
// taken back by the destructor, the change log with it.
class KALVOR_RULES RowPaste {
 public:
  // How a text gets into a field; throws when it does not fit.
  using CellSetter = std::function<void(TField* field, const QString& text)>;

  RowPaste(TClientDataSet* dataSet, QList<TField*> columns, CellSetter setCell);
  RowPaste(const RowPaste&) = delete;
  RowPaste& operator=(const RowPaste&) = delete;
  ~RowPaste();

  // Throws, with nothing appended, when the dataset takes no records at all.
  void run(const QList<QStringList>& table);
  const QList<PastedRow>& rows() const { return rows_; }
  const QList<TField*>& columns() const { return columns_; }
  qsizetype fitting() const;
  void keep();  // the rows that fit stay

 private:
  QString appendRow(const QStringList& cells);
  void takeBack();

  TClientDataSet* dataSet_;
  QList<TField*> columns_;
  CellSetter setCell_;
  QList<PastedRow> rows_;
  Bookmark before_ = noBookmark;
  bool kept_ = false;
};

}  // namespace kalvor
