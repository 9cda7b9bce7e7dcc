// A grid of texts whose cells each have the editor that suits them. Everything works by keyboard.
#pragma once

#include <QColor>
#include <QHash>
#include <QPointer>
#include <QTableView>
#include <functional>

#include "data/string_table.h"

namespace kalvor {

class StringGridDelegate;
class StringGridModel;

// What a cell is edited with.
struct StringCellEditor {
  enum class Kind : quint8 { Plain, DropDown, Ellipsis, None };
  Kind kind = Kind::Plain;
  QStringList items;  // of a drop-down: typing completes to them, other texts are taken as typed
  QString icon;       // of the ellipsis button, by theme name; empty = "…"
};

// What a column keeps beside its title, for whoever stores the grid's view.
struct StringGridColumn {
  QStringList texts;  // empty: the column has no descriptor
  QColor color;       // of its cells; invalid = the grid's own
};

// Rows count as in the table: 0 is the title row, so the first row of cells is 1.
//
// Keys: letters, F2 and a double click start an edit, Tab and Shift+Tab go from cell to cell and leave at the ends,
// Enter and Escape end an edit, Backspace empties the cell. Alt+Down opens a drop-down list, and Alt+Down, F4 and
// Ctrl+Enter press the ellipsis button.
class KALVOR_WIDGETS TStringGrid : public QTableView {
  Q_OBJECT
 public:
  explicit TStringGrid(int columns, QWidget* parent = nullptr);
  ~TStringGrid() override;

  StringTable& table() { return table_; }
  const StringTable& table() const { return table_; }
  QString Cells(int column, int row) const { return table_.Cells(column, row); }
  void SetCells(int column, int row, const QString& text) { table_.SetCells(column, row, text); }
  int RowCount() const { return table_.RowCount(); }
  int ColCount() const { return table_.ColCount(); }
  int Col() const;                  // of the current cell, -1 for none
  int Row() const;
  void select(int column, int row); // makes the cell current
  void setColumnWidths(const QList<int>& widths);  // the least widths; the grid's width is shared out by them

  // One column as wide as this; from then on the widths are no longer shared out.
  void setColumnPixels(int column, int width);
  StringGridColumn columnDescriptor(int column) const { return descriptors_.value(column); }
  void setColumnDescriptor(int column, const StringGridColumn& descriptor);

  // Single slots.
  std::function<StringCellEditor(int column, int row)> OnGetEditor;       // empty: plain
  std::function<void(int column, int row)> OnEllipsis;                    // the button was pressed; no edit is open
  std::function<void(int column, int row)> OnEdited;                      // the user's text is in the cell
  std::function<QString(int column, int row, const QString& text)> OnDisplayText;
  // Before the grid itself sees the key; no edit is open. True: used up.
  std::function<bool(QKeyEvent* event)> OnKey;

  StringCellEditor editorOf(int column, int row) const;
  QWidget* cellEditor() const;      // null while no edit is open
  void startEdit();                 // of the current cell
  void commitEdit();                // ends an open edit, keeping its text
  void cancelEdit();
  void pressEllipsis();             // of the current cell; ends an open edit first

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  friend class StringGridDelegate;
  bool special(QKeyEvent* event);
  void shareWidth();

  StringTable table_;
  StringGridModel* model_;
  StringGridDelegate* delegate_;
  QList<int> widths_;
  QHash<int, StringGridColumn> descriptors_;
};

// Takes a row out of the grid, and an edit that is open with it; the titles stay.
KALVOR_WIDGETS void DeleteGridRoll(TStringGrid* grid, int row);

}  // namespace kalvor
