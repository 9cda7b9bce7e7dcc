#include "widgets/string_grid.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <numeric>

#include "widgets/string_grid_delegate.h"
#include "widgets/theme.h"

namespace kalvor {

class StringGridModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit StringGridModel(TStringGrid* grid) : QAbstractTableModel(grid), grid_(grid) {}

  int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : grid_->ColCount(); }

  QVariant data(const QModelIndex& index, int role) const override
  {
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole) {
      return {};
    }
    const QString text = grid_->Cells(index.column(), index.row() + 1);
    return role != Qt::EditRole && grid_->OnDisplayText
               ? grid_->OnDisplayText(index.column(), index.row() + 1, text)
               : text;
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override
  {
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::TextAlignmentRole)) {
      return {};
    }
    return role == Qt::DisplayRole ? QVariant(grid_->Cells(section, 0)) : QVariant(int(Qt::AlignLeft | Qt::AlignVCenter));
  }

  Qt::ItemFlags flags(const QModelIndex& index) const override
  {
    const bool editable = grid_->editorOf(index.column(), index.row() + 1).kind != StringCellEditor::Kind::None;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | (editable ? Qt::ItemIsEditable : Qt::NoItemFlags);
  }

  bool setData(const QModelIndex& index, const QVariant& value, int role) override
  {
    if (role != Qt::EditRole) {
      return false;
    }
    grid_->SetCells(index.column(), index.row() + 1, value.toString());
    if (grid_->OnEdited) {
      grid_->OnEdited(index.column(), index.row() + 1);
    }
    return true;
  }

  void cellChanged(int column, int row)
  {
    if (row == 0) {
      emit headerDataChanged(Qt::Horizontal, column, column);
    } else if (row <= rows_) {
      const QModelIndex cell = index(row - 1, column);
      emit dataChanged(cell, cell);
    }
  }

  // The current cell stays where it was as far as the table reaches.
  void followTable()
  {
    const int column = std::max(grid_->Col(), 0);
    const int row = std::max(grid_->Row(), 1);
    beginResetModel();
    rows_ = grid_->RowCount() - 1;
    endResetModel();
    grid_->select(column, std::min(row, rows_));
  }

 private:
  TStringGrid* grid_;
  int rows_ = 0;
};

TStringGrid::TStringGrid(int columns, QWidget* parent)
    : QTableView(parent), table_(columns, 2), model_(new StringGridModel(this)), delegate_(new StringGridDelegate(this))
{
  setModel(model_);
  setItemDelegate(delegate_);
  setSelectionMode(QAbstractItemView::NoSelection);
  setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
  setShowGrid(false);
  setWordWrap(false);
  setTabKeyNavigation(false);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(textLineHeight(fontMetrics()));
  verticalHeader()->setMinimumSectionSize(textLineHeight(fontMetrics()));
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionsClickable(false);
  table_.OnCellChanged = [this](int column, int row) { model_->cellChanged(column, row); };
  table_.OnRowsChanged = [this] { model_->followTable(); };
  model_->followTable();
}

TStringGrid::~TStringGrid() = default;

int TStringGrid::Col() const
{
  return currentIndex().isValid() ? currentIndex().column() : -1;
}

int TStringGrid::Row() const
{
  return currentIndex().isValid() ? currentIndex().row() + 1 : -1;
}

void TStringGrid::select(int column, int row)
{
  const QModelIndex before = currentIndex();
  setCurrentIndex(model_->index(row - 1, column));
  if (before.isValid() && before.row() != currentIndex().row()) {
    viewport()->update();  // the band of the current row
  }
}

void TStringGrid::setColumnWidths(const QList<int>& widths)
{
  widths_ = widths;
  shareWidth();
}

void TStringGrid::setColumnPixels(int column, int width)
{
  widths_.clear();
  setColumnWidth(column, width);
}

void TStringGrid::setColumnDescriptor(int column, const StringGridColumn& descriptor)
{
  descriptors_.insert(column, descriptor);
  viewport()->update();
}

void TStringGrid::shareWidth()
{
  const int least = std::accumulate(widths_.begin(), widths_.end(), 0);
  if (least == 0) {
    return;
  }
  const int room = std::max(viewport()->width(), least);
  int used = 0;
  for (int column = 0; column < widths_.size(); ++column) {
    const bool last = column + 1 == widths_.size();
    const int width = last ? room - used : widths_[column] * room / least;
    setColumnWidth(column, width);
    used += width;
  }
}

void TStringGrid::resizeEvent(QResizeEvent* event)
{
  QTableView::resizeEvent(event);
  shareWidth();
}

StringCellEditor TStringGrid::editorOf(int column, int row) const
{
  return OnGetEditor ? OnGetEditor(column, row) : StringCellEditor{};
}

QWidget* TStringGrid::cellEditor() const
{
  return delegate_->editor();
}

void TStringGrid::startEdit()
{
  if (!cellEditor() && currentIndex().isValid()) {
    edit(currentIndex());
  }
}

void TStringGrid::commitEdit()
{
  delegate_->end(true);
}

void TStringGrid::cancelEdit()
{
  delegate_->end(false);
}

void TStringGrid::pressEllipsis()
{
  commitEdit();
  if (OnEllipsis && Col() >= 0 && editorOf(Col(), Row()).kind == StringCellEditor::Kind::Ellipsis) {
    OnEllipsis(Col(), Row());
  }
}

bool TStringGrid::special(QKeyEvent* event)
{
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const bool opens = (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier)) ||
                     event->key() == Qt::Key_F4 || (enter && event->modifiers().testFlag(Qt::ControlModifier));
  if (opens && Col() >= 0) {
    const StringCellEditor::Kind kind = editorOf(Col(), Row()).kind;
    if (kind == StringCellEditor::Kind::Ellipsis) {
      pressEllipsis();
    } else if (kind == StringCellEditor::Kind::DropDown) {
      startEdit();
      if (auto* list = qobject_cast<QComboBox*>(cellEditor())) {
        list->showPopup();
      }
    }
    return true;
  }
  if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) {
    return focusNextPrevChild(event->key() == Qt::Key_Tab && !event->modifiers().testFlag(Qt::ShiftModifier));
  }
  if (event->key() == Qt::Key_Backspace && Col() >= 0 && editorOf(Col(), Row()).kind != StringCellEditor::Kind::None) {
    model_->setData(currentIndex(), QString(), Qt::EditRole);
    return true;
  }
  return false;
}

void TStringGrid::keyPressEvent(QKeyEvent* event)
{
  if ((OnKey && OnKey(event)) || special(event)) {
    event->accept();
    return;
  }
  QTableView::keyPressEvent(event);
}

bool TStringGrid::focusNextPrevChild(bool next)
{
  const int cells = ColCount() * (RowCount() - 1);
  const int here = currentIndex().isValid() ? currentIndex().row() * ColCount() + currentIndex().column() : -1;
  const int there = next ? here + 1 : here - 1;
  if (here < 0 || there < 0 || there >= cells) {
    return QTableView::focusNextPrevChild(next);
  }
  select(there % ColCount(), there / ColCount() + 1);
  return true;
}

void DeleteGridRoll(TStringGrid* grid, int row)
{
  grid->cancelEdit();
  grid->table().removeRow(row);
}

}  // namespace kalvor

#include "string_grid.moc"
