// The data grid.
#pragma once

#include <QPointer>
#include <QSet>
#include <QTableView>
#include <optional>

#include "widgets/dataset_model.h"
#include "widgets/grid_column.h"

namespace kalvor {

class GridHeader;

// Shows a dataset's view, one column per visible field. The current cell's row is the dataset's current record,
// both ways; leaving a row posts it. Columns are moved, resized and hidden by the user; marked rows are a
// selection beside the cursor. Column positions count the shown columns from 0, left to right; -1 is none.
class KALVOR_WIDGETS TDBGrid : public QTableView {
  Q_OBJECT
  Q_PROPERTY(QString dataSetName READ dataSetName WRITE setDataSetName)
  Q_PROPERTY(bool readOnly READ readOnly WRITE setReadOnly)
  Q_PROPERTY(bool inCellEditing READ inCellEditing WRITE setInCellEditing)
  Q_PROPERTY(bool multiSelect READ multiSelect WRITE setMultiSelect)
  Q_PROPERTY(bool titleButtons READ titleButtons WRITE setTitleButtons)
 public:
  explicit TDBGrid(QWidget* parent = nullptr);
  ~TDBGrid() override;

  void setDataSet(TClientDataSet* dataSet);
  TClientDataSet* dataSet() const { return model_->dataSet(); }
  void setDataSetName(const QString& name) { dataSetName_ = name; }
  const QString& dataSetName() const { return dataSetName_; }
  DatasetModel* datasetModel() const { return model_; }

  void setReadOnly(bool on);
  bool readOnly() const { return readOnly_; }
  void setInCellEditing(bool on);   // typing into a cell edits it; off at first
  bool inCellEditing() const { return inCellEditing_; }
  void setMultiSelect(bool on);     // rows can be marked; off at first
  bool multiSelect() const { return multiSelect_; }
  void setTitleButtons(bool on);    // a click on a title is told; on at first
  bool titleButtons() const;
  void setTitleColor(const QColor& color);

  // --- Columns. By field name, without regard to case; unknown names do nothing. ---------------------------
  QList<GridColumn> columns() const;  // all, hidden ones too, left to right
  // Puts the listed columns first in the listed order with what they say; the others follow unchanged.
  void setColumns(const QList<GridColumn>& columns);
  void setColumnVisible(const QString& fieldName, bool on);
  bool columnVisible(const QString& fieldName) const;
  void setColumnReadOnly(const QString& fieldName, bool on);
  bool columnReadOnly(const QString& fieldName) const;
  void setColumnPixels(const QString& fieldName, int width);
  void setColumnCharacters(const QString& fieldName, int characters);
  int columnCharacters(const QString& fieldName) const;  // 0 for an unknown column
  void setColumnColor(const QString& fieldName, const QColor& color);
  void setColumnAlignment(const QString& fieldName, Qt::Alignment alignment);
  Qt::Alignment columnAlignment(int modelColumn) const;
  void moveColumn(const QString& fieldName, int position);  // among all columns, hidden ones too
  void setColumnEditor(const QString& fieldName, const CellEditor& editor);
  CellEditor columnEditor(const QString& fieldName) const;

  int shownColumnCount() const;
  TField* shownField(int position) const;
  TField* selectedField() const;
  int selectedColumn() const;
  bool selectColumn(int position);
  bool selectField(const QString& fieldName);
  // To the next or previous shown column; false (nothing moves) when there is none.
  bool selectNextColumn(bool skipReadOnly = false);
  bool selectPriorColumn(bool skipReadOnly = false);
  bool selectFirstColumn(bool skipReadOnly = false);
  bool selectLastColumn(bool skipReadOnly = false);
  // The first or last column that is not read-only itself, whatever the grid is; without one, simply the first or last.
  bool selectFirstWritableColumn();
  bool selectLastWritableColumn();
  bool canEditField(const TField* field) const;  // grid, column and field allow it

  // --- Marked rows ----------------------------------------------------------------------------------------
  bool isMarked(qsizetype row) const;
  void setMarked(qsizetype row, bool on);
  void markAll();
  void clearMarks();
  bool hasMarks() const;
  QList<Bookmark> markedRecords() const;  // in the order of the view; those that are gone are left out

  // --- Clipboard ------------------------------------------------------------------------------------------
  // Shown columns of the marked rows, else of the current one; tabs between cells, a line per row.
  QString copyText(bool withHeaders) const;

  // --- Editing in place -----------------------------------------------------------------------------------
  bool editCell();          // opens the editor of the current cell
  QWidget* cellEditor() const { return editor_; }  // the open one, or null
  bool commitCell();        // writes what is in it; false when the field refused it
  void closeCell();         // closes it without writing
  bool toggleCell(const QModelIndex& index);  // of a check-box column

  // --- Hooks: single slots --------------------------------------------------------------------------------
  std::function<bool(QKeyEvent*)> keyHandler;  // asked before the grid; true = the key is used up
  std::function<void(qsizetype row, TField* field, CellColors& colors)> cellColors;

  int titleHeight() const;
  QString cellText(const QModelIndex& index) const;  // as shown; "Да" and "Не" in check-box columns

 signals:
  void titleClicked(kalvor::TField* field);
  void columnLayoutChanged();                    // moved or resized by the user
  void columnEntered(kalvor::TField* field);
  void characterTyped(const QString& text);      // nothing is being edited: search for it
  void selectorRequested(kalvor::TField* field); // the button of a selector or date cell, or Alt+Down
  void marksChanged();
  void pasteRequested();                         // Ctrl+V in an editable grid

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  bool focusNextPrevChild(bool next) override;
  void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles = {}) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  virtual void columnsArranged() {}  // widths, order or visibility changed
  virtual void recordsShown() {}     // other records or other values
  void growColumn(const QString& fieldName, int needed);  // unless the user gave it a width
  QList<int> shownColumns() const;   // model columns, left to right
  GridHeader* header() const { return header_; }

 private:
  friend class GridDelegate;

  struct ColumnState {
    std::optional<bool> visible;  // none: as the field says
    int width = 0;                // 0: by content
    QColor color;
    Qt::Alignment alignment;
    bool readOnly = false;
    CellEditor editor;
  };

  ColumnState& columnState(const QString& fieldName) { return states_[fieldName.toLower()]; }
  const ColumnState& stateOf(const QString& fieldName) const;
  const ColumnState& stateOf(const TField* field) const;  // the plain one for null
  void connectModel();
  void applyMetrics();
  void arrangeColumns();
  void rememberOrder();
  int startingWidth(int column) const;
  int textWidth(int row, int column) const;  // that a cell needs
  void growColumns(int row);
  int characterPixels(int characters) const;
  bool writableColumn(const TField* field) const;
  std::function<bool(const TField*)> columnTest(bool skipReadOnly) const;
  bool selectFrom(int position, int step, const std::function<bool(const TField*)>& wanted);
  void followCursor();
  void followRecords();
  void updateRow(int row);
  void showSortMark();
  bool editableNow() const;
  bool tabKey(bool forward);
  bool navigationKey(QKeyEvent* event);
  bool commandKey(QKeyEvent* event);
  bool editingKey(QKeyEvent* event);
  bool moveRecord(const std::function<void()>& move);
  bool markByMouse(int row, Qt::KeyboardModifiers modifiers, Bookmark before);
  void extendMarks(Bookmark from);
  void markRange(qsizetype from, qsizetype to);

  DatasetModel* model_;
  GridHeader* header_;
  QPointer<QWidget> editor_;            // of the cell being edited
  QString dataSetName_;
  QHash<QString, ColumnState> states_;  // by lower-case field name
  QStringList order_;                   // lower-case names, left to right, once somebody has moved one
  QSet<Bookmark> marks_;                // or, with allMarked_, the records that are not
  bool allMarked_ = false;
  Bookmark anchor_ = noBookmark;        // where a range of marks began
  QString currentName_;                 // the selected column survives other records and other fields
  bool readOnly_ = false;
  bool inCellEditing_ = false;
  bool multiSelect_ = false;
  bool following_ = false;              // the view moves because the dataset did
  bool arranging_ = false;
  bool sampled_ = false;                // widths were taken from records, not from captions alone
};

}  // namespace kalvor
