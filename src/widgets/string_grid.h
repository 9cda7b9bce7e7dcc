// A grid of texts whose cells each have the editor that suits them. Everything works by keyboard.
#pragma once

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
};

}  // namespace kalvor
