#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "widgets/data_control.h"
#include "widgets/db_grid.h"
#include "widgets/grid_delegate.h"

namespace kalvor {
namespace {

bool isTypedText(const QKeyEvent* event)
{
  const QString text = event->text();
  return !text.isEmpty() && text.at(0).isPrint() &&
         !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

// Digits and the letters of both alphabets; other characters are left to the form.
bool startsSearch(const QString& text)
{
  const char16_t c = text.at(0).unicode();
  return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'А' && c <= u'я');
}

}  // namespace

void TDBGrid::keyPressEvent(QKeyEvent* event)
{
  event->accept();
  if ((keyHandler && keyHandler(event)) || navigationKey(event) || commandKey(event) || editingKey(event)) {
    return;
  }
  event->ignore();
}

bool TDBGrid::moveRecord(const std::function<void()>& move)
{
  return commitCell() && attempt(this, move);
}

bool TDBGrid::navigationKey(QKeyEvent* event)
{
  TClientDataSet* source = dataSet();
  if (!source || !source->Active() || event->modifiers().testFlag(Qt::AltModifier)) {
    return false;
  }
  const bool control = event->modifiers().testFlag(Qt::ControlModifier);
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  const qsizetype page = qMax(1, verticalScrollBar()->pageStep() - 1);
  std::function<void()> move;
  switch (event->key()) {
    case Qt::Key_Up: move = [source] { source->MoveBy(-1); }; break;
    case Qt::Key_Down: move = [source] { source->MoveBy(1); }; break;
    case Qt::Key_PageUp: move = [source, page] { source->MoveBy(-page); }; break;
    case Qt::Key_PageDown: move = [source, page] { source->MoveBy(page); }; break;
    case Qt::Key_Left: selectPriorColumn(); return true;
    case Qt::Key_Right: selectNextColumn(); return true;
    case Qt::Key_Tab: return tabKey(true);
    case Qt::Key_Backtab: return tabKey(false);
    case Qt::Key_Home:
      if (!control) {
        selectFirstColumn();
        return true;
      }
      move = [source] { source->First(); };
      break;
    case Qt::Key_End:
      if (!control) {
        selectLastColumn();
        return true;
      }
      move = [source] { source->Last(); };
      break;
    default: return false;
  }
  const Bookmark before = source->GetBookmark();
  if (moveRecord(move)) {
    if (multiSelect_ && shift) {
      extendMarks(before);
    } else if (!control || event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
      clearMarks();
    }
  }
  return true;
}

bool TDBGrid::tabKey(bool forward)
{
  if (forward ? selectNextColumn() : selectPriorColumn()) {
    return true;
  }
  const Bookmark before = dataSet()->GetBookmark();
  moveRecord([this, forward] { dataSet()->MoveBy(forward ? 1 : -1); });
  if (dataSet()->GetBookmark() != before) {
    forward ? selectFirstColumn() : selectLastColumn();
  }
  return true;
}

bool TDBGrid::focusNextPrevChild(bool next)
{
  if (QApplication::focusWidget() != this) {
    setFocus();  // something inside the grid had the focus and gives it up
    return true;
  }
  // At the very end and the very beginning Tab leaves the grid.
  const TClientDataSet* source = dataSet();
  const bool last = !source || !source->Active() || source->IsEmpty() ||
                    (next ? selectedColumn() >= shownColumnCount() - 1 && source->RecNo() >= source->RecordCount() &&
                                source->AllFetched()
                          : selectedColumn() <= 0 && source->RecNo() <= 1);
  return last ? QAbstractScrollArea::focusNextPrevChild(next) : QTableView::focusNextPrevChild(next);
}

bool TDBGrid::commandKey(QKeyEvent* event)
{
  const bool control = event->modifiers().testFlag(Qt::ControlModifier);
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  if (control && (event->key() == Qt::Key_C || event->key() == Qt::Key_Insert)) {
    // One cell is what the eye is on; more than that comes with its titles.
    const bool rows = hasMarks() || shift;
    QApplication::clipboard()->setText(rows ? copyText(true) : cellText(currentIndex()));
    return true;
  }
  if ((control && event->key() == Qt::Key_V) || (shift && event->key() == Qt::Key_Insert)) {
    if (!inCellEditing_ || readOnly_) {
      return false;
    }
    emit pasteRequested();
    return true;
  }
  if (control && event->key() == Qt::Key_A && multiSelect_) {
    markAll();
    return true;
  }
  if (control && event->key() == Qt::Key_Space && multiSelect_ && currentIndex().isValid()) {
    setMarked(currentIndex().row(), !isMarked(currentIndex().row()));
    anchor_ = dataSet()->GetBookmark();
    return true;
  }
  if (event->key() == Qt::Key_Escape && dataSet() && dataSet()->IsEditing()) {
    attempt(this, [this] { dataSet()->Cancel(); });
    return true;
  }
  return false;
}

bool TDBGrid::editingKey(QKeyEvent* event)
{
  TField* field = selectedField();
  if (!field) {
    return false;
  }
  const CellEditorKind kind = stateOf(field).editor.kind;
  const bool offersButton = kind == CellEditorKind::Selector || kind == CellEditorKind::Date;
  if (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier)) {
    if (offersButton && inCellEditing_) {
      emit selectorRequested(field);
      return true;
    }
    return kind == CellEditorKind::DropDown && editCell();
  }
  if (event->key() == Qt::Key_F2) {
    return editCell();
  }
  if (event->key() == Qt::Key_Space && kind == CellEditorKind::CheckBox) {
    return toggleCell(currentIndex());
  }
  if (!isTypedText(event)) {
    return false;
  }
  if (inCellEditing_) {
    return edit(currentIndex(), QAbstractItemView::AnyKeyPressed, event);
  }
  if (dataSet()->IsEditing() || !startsSearch(event->text())) {
    return false;
  }
  emit characterTyped(event->text());
  return true;
}

void TDBGrid::mousePressEvent(QMouseEvent* event)
{
  const QModelIndex before = currentIndex();
  const Bookmark recordBefore = dataSet() && dataSet()->Active() ? dataSet()->GetBookmark() : noBookmark;
  QTableView::mousePressEvent(event);
  const QModelIndex index = indexAt(event->position().toPoint());
  if (event->button() != Qt::LeftButton || !index.isValid() || currentIndex() != index) {
    return;
  }
  if (markByMouse(index.row(), event->modifiers(), recordBefore)) {
    return;
  }
  const CellEditorKind kind = stateOf(model_->fieldAt(index.column())).editor.kind;
  const QPoint inCell = event->position().toPoint();
  if (kind == CellEditorKind::CheckBox) {
    QRect box = visualRect(index);
    box.adjust(box.width() / 2 - 10, 0, -(box.width() / 2 - 10), 0);
    if (box.contains(inCell)) {
      toggleCell(index);
    }
  } else if (before == index && kind != CellEditorKind::ByType && editableNow() &&
             GridDelegate::buttonRect(visualRect(index)).contains(inCell)) {
    if (kind == CellEditorKind::DropDown) {
      editCell();
    } else {
      emit selectorRequested(model_->fieldAt(index.column()));
    }
  }
}

void TDBGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
  QTableView::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()) == currentIndex()) {
    editCell();
  }
}

}  // namespace kalvor
