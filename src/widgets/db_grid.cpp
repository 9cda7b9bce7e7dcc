#include "widgets/db_grid.h"

#include <QApplication>
#include <QPainter>
#include <QScopedValueRollback>

#include "widgets/data_control.h"
#include "widgets/grid_delegate.h"
#include "widgets/grid_header.h"
#include "widgets/theme.h"

namespace kalvor {

TDBGrid::TDBGrid(QWidget* parent) : QTableView(parent), model_(new DatasetModel(this)), header_(new GridHeader(this))
{
  setHorizontalHeader(header_);
  setVerticalHeader(new RowHeader(model_, this));
  setModel(model_);
  setItemDelegate(new GridDelegate(this));
  setSelectionMode(QAbstractItemView::NoSelection);  // marks are ours: they follow records, not rows
  setEditTriggers(QAbstractItemView::AnyKeyPressed);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setShowGrid(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setTabKeyNavigation(true);
  header_->alignmentOf = [this](int section) { return columnAlignment(section); };
  applyMetrics();
  connectModel();
}

TDBGrid::~TDBGrid() = default;

void TDBGrid::connectModel()
{
  connect(model_, &QAbstractItemModel::modelReset, this, [this] { sampled_ = false; });
  connect(model_, &DatasetModel::fieldsChanged, this, [this] {
    sampled_ = false;  // the titles may be others now
    arrangeColumns();
  });
  connect(model_, &DatasetModel::cursorMoved, this, &TDBGrid::followCursor);
  connect(model_, &DatasetModel::recordsChanged, this, &TDBGrid::followRecords);
  connect(model_, &DatasetModel::recordStateChanged, this, [this] { updateRow(currentIndex().row()); });
  connect(model_, &DatasetModel::focusRequested, this, [this](TField* field) {
    if (field && selectField(field->FieldName())) {
      setFocus(Qt::OtherFocusReason);
    }
  });
  // The toolkit's own reactions select columns and rows, and move the cursor to the first shown record.
  for (QHeaderView* header : {static_cast<QHeaderView*>(header_), verticalHeader()}) {
    disconnect(header, SIGNAL(sectionPressed(int)), this, nullptr);
    disconnect(header, SIGNAL(sectionEntered(int)), this, nullptr);
  }
  connect(verticalHeader(), &QHeaderView::sectionPressed, this, [this](int row) {
    if (currentIndex().isValid()) {
      const Bookmark before = dataSet()->GetBookmark();
      setCurrentIndex(model_->index(row, currentIndex().column()));
      if (currentIndex().row() == row) {
        markByMouse(row, QApplication::keyboardModifiers(), before);
      }
    }
    setFocus(Qt::MouseFocusReason);
  });
  connect(header_, &QHeaderView::sectionClicked, this, [this](int section) {
    TField* field = model_->fieldAt(section);
    if (field && commitCell()) {
      emit titleClicked(field);
    }
  });
  connect(header_, &GridHeader::layoutChangedByUser, this, [this] {
    for (int i = 0; i < header_->count(); ++i) {
      if (!header_->isSectionHidden(i)) {
        columnState(model_->fieldAt(i) ? model_->fieldAt(i)->FieldName() : QString()).width = header_->sectionSize(i);
      }
    }
    rememberOrder();
    columnsArranged();
    emit columnLayoutChanged();
  });
  connect(header_, &QHeaderView::sectionResized, this, [this] {
    if (!arranging_) {
      columnsArranged();
    }
  });
}

void TDBGrid::applyMetrics()
{
  const int rowHeight = textLineHeight(fontMetrics());
  verticalHeader()->setMinimumSectionSize(rowHeight);
  verticalHeader()->setDefaultSectionSize(rowHeight);
}

int TDBGrid::titleHeight() const
{
  return header_->height();
}

void TDBGrid::setDataSet(TClientDataSet* dataSet)
{
  closeCell();
  marks_.clear();
  allMarked_ = false;
  sampled_ = false;
  model_->setDataSet(dataSet);
  followRecords();
}

void TDBGrid::setReadOnly(bool on)
{
  readOnly_ = on;
  if (on) {
    closeCell();
  }
  viewport()->update();
}

void TDBGrid::setInCellEditing(bool on)
{
  inCellEditing_ = on;
  viewport()->update();
}

void TDBGrid::setMultiSelect(bool on)
{
  multiSelect_ = on;
  if (!on) {
    clearMarks();
  }
}

void TDBGrid::setTitleButtons(bool on)
{
  header_->setSectionsClickable(on);
}

bool TDBGrid::titleButtons() const
{
  return header_->sectionsClickable();
}

void TDBGrid::setTitleColor(const QColor& color)
{
  header_->setTitleColor(color);
}

void TDBGrid::followCursor()
{
  const qsizetype row = dataSet() && dataSet()->Active() ? dataSet()->RecNo() - 1 : -1;
  const QScopedValueRollback<bool> quiet(following_, true);
  const int previousRow = currentIndex().row();
  if (row < 0 || row >= model_->rowCount()) {
    setCurrentIndex(QModelIndex());
  } else {
    int column = model_->columnOf(currentName_);
    if (column < 0 || isColumnHidden(column)) {
      column = shownColumns().value(0, 0);
    }
    const QModelIndex target = model_->index(int(row), column);
    selectionModel()->setCurrentIndex(target, QItemSelectionModel::NoUpdate);
    scrollTo(target);
  }
  if (previousRow != currentIndex().row()) {
    updateRow(previousRow);  // the tint of the whole row moves
    updateRow(currentIndex().row());
  }
}

void TDBGrid::updateRow(int row)
{
  if (row < 0 || row >= model_->rowCount()) {
    return;
  }
  const int top = rowViewportPosition(row);
  const int height = rowHeight(row);
  viewport()->update(0, top, viewport()->width(), height);
  verticalHeader()->viewport()->update(0, top, verticalHeader()->width(), height);
}

void TDBGrid::followRecords()
{
  if (!sampled_ && model_->rowCount() > 0) {
    arrangeColumns();
  }
  showSortMark();
  viewport()->update();
  verticalHeader()->viewport()->update();
  recordsShown();
}

void TDBGrid::showSortMark()
{
  const QString order = dataSet() && dataSet()->Active() ? dataSet()->IndexFieldNames() : QString();
  QList<SortMark> marks;
  for (const QString& part : order.split(u';', Qt::SkipEmptyParts)) {
    const QString field = part.trimmed();
    const bool descending = field.endsWith(QLatin1String(" DESC"), Qt::CaseInsensitive);
    if (const int column = model_->columnOf(field.section(u' ', 0, 0)); column >= 0) {
      marks.append({column, descending ? Qt::DescendingOrder : Qt::AscendingOrder});
    }
  }
  header_->setSortMarks(marks);
}

void TDBGrid::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>&)
{
  // The toolkit would ask an open editor to read the value again; ours follow the field by themselves.
  if (topLeft.row() == bottomRight.row()) {
    growColumns(topLeft.row());
    updateRow(topLeft.row());
  } else {
    viewport()->update();
  }
  recordsShown();
}

void TDBGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
  const bool byUser = !following_ && !model_->isSyncing();
  if (byUser && previous.isValid() && cellEditor() && !commitCell()) {
    const QScopedValueRollback<bool> quiet(following_, true);
    const QSignalBlocker blocked(selectionModel());
    selectionModel()->setCurrentIndex(previous, QItemSelectionModel::NoUpdate);
    viewport()->update();
    return;
  }
  // Taken first: scrolling to the cell may fetch records, and the cursor is then shown in this column.
  TField* field = current.isValid() && !model_->isSyncing() ? model_->fieldAt(current.column()) : nullptr;
  const bool entered = field && field->FieldName() != currentName_;
  if (entered) {
    currentName_ = field->FieldName();
  }
  QTableView::currentChanged(current, previous);
  if (current.row() != previous.row()) {
    updateRow(previous.row());
    updateRow(current.row());
  }
  if (!current.isValid() || model_->isSyncing()) {
    return;
  }
  if (entered) {
    emit columnEntered(field);
  }
  if (byUser && dataSet() && current.row() != dataSet()->RecNo() - 1) {
    // By record, not by number: posting the one that is left may move it within the order.
    const Bookmark target = dataSet()->BookmarkOfRow(current.row());
    attempt(this, [this, target] { dataSet()->GotoBookmark(target); });
    followCursor();
  }
}

void TDBGrid::changeEvent(QEvent* event)
{
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    applyMetrics();
  }
}

QString TDBGrid::cellText(const QModelIndex& index) const
{
  const TField* field = model_->fieldAt(index.column());
  const CellEditor editor = stateOf(field).editor;
  if (editor.kind == CellEditorKind::CheckBox && dataSet() && index.row() < dataSet()->RecordCount()) {
    return variantText(field->ValueAt(index.row())) == editor.checked ? QStringLiteral("Да") : QStringLiteral("Не");
  }
  return model_->data(index, Qt::DisplayRole).toString();
}

}  // namespace kalvor
