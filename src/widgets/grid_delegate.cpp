#include "widgets/grid_delegate.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>
#include <QTimer>
#include <QToolTip>

#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/db_grid.h"
#include "widgets/edit_button.h"
#include "widgets/theme.h"
#include "widgets/theme_painting.h"

namespace kalvor {
namespace {

// The toolkit's edit keeps two pixels itself, and the editor stands one inside the cell.
constexpr int inEditor = spacing::cellPadding - 3;

}  // namespace

GridDelegate::GridDelegate(TDBGrid* grid) : QAbstractItemDelegate(grid), grid_(grid) {}

QRect GridDelegate::buttonRect(const QRect& cell)
{
  return QRect(cell.right() - cell.height() + 1, cell.top(), cell.height(), cell.height());
}

QSize GridDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
  return QSize(64, textLineHeight(option.fontMetrics));
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
  TField* field = grid_->model_->fieldAt(index.column());
  if (!field) {
    return;
  }
  const TDBGrid::ColumnState& column = grid_->stateOf(field);
  const bool open = grid_->dataSet()->Active() && index.row() < grid_->dataSet()->RecordCount();
  const bool enabled = option.state & QStyle::State_Enabled;
  const QPalette& palette = option.palette;
  CellColors colors;
  colors.background = palette.color(index.row() % 2 ? QPalette::AlternateBase : QPalette::Base);
  if (column.color.isValid()) {
    colors.background = column.color;
  }
  colors.text = palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::Text);
  if (enabled && open && DatasetModel::isNegative(field, index.row())) {
    colors.text = theme().negative;
  }
  colors.current = index == grid_->currentIndex();
  colors.marked = grid_->isMarked(index.row());
  if (grid_->cellColors) {
    grid_->cellColors(index.row(), field, colors);
  }
  const bool currentRow = index.row() == grid_->currentIndex().row();
  if (colors.marked) {
    colors.background = blend(theme().accent, colors.background, 0.30);
  } else if (currentRow) {
    colors.background = blend(theme().accent, colors.background, 0.12);
  }
  painter->fillRect(option.rect, colors.background);
  painter->setPen(theme().quietLine);
  painter->drawLine(option.rect.topRight(), option.rect.bottomRight());

  const bool buttonShown = colors.current && column.editor.kind != CellEditorKind::ByType &&
                           column.editor.kind != CellEditorKind::CheckBox && grid_->editableNow();
  if (column.editor.kind == CellEditorKind::CheckBox) {
    const bool checked = variantText(field->ValueAt(index.row())) == column.editor.checked;
    drawCheckBox(painter, option.rect, checked ? CheckLook::Checked : CheckLook::Unchecked,
                 enabled && grid_->canEditField(field) && grid_->inCellEditing(), false);
  } else {
    const Qt::Alignment alignment = column.alignment ? column.alignment : fieldAlignment(field);
    QRect textRect = option.rect.adjusted(spacing::cellPadding, 0, -spacing::cellPadding - 1, 0);
    if (buttonShown) {
      textRect.setRight(textRect.right() - option.rect.height() + spacing::tight);
      drawCellMark(painter, buttonRect(option.rect),
                   column.editor.kind == CellEditorKind::Selector ? CellMark::Ellipsis : CellMark::DropDown, theme().accent);
    }
    QString text = open ? field->DisplayTextAt(index.row()) : QString();
    text.replace(u'\n', u' ').remove(u'\r');
    painter->setPen(colors.text);
    painter->setFont(option.font);
    text_.setFont(option.font);
    text_.draw(painter, textRect, alignment, text);
  }
  if (colors.current) {
    const bool active = grid_->hasFocus() || grid_->isAncestorOf(QApplication::focusWidget());
    painter->setPen(QPen(active ? theme().accent : theme().quietText, active ? 2 : 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(active ? option.rect.adjusted(1, 1, -1, -1) : option.rect.adjusted(0, 0, -1, -1));
  }
}

bool GridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem&,
                             const QModelIndex& index)
{
  if (event->type() != QEvent::ToolTip) {
    return false;
  }
  const bool cut = index.isValid() && grid_->textWidth(index.row(), index.column()) - spacing::tight >
                                          grid_->visualRect(index).width();
  cut ? QToolTip::showText(event->globalPos(), grid_->cellText(index), view) : QToolTip::hideText();
  return true;
}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
  TField* field = grid_->model_->fieldAt(index.column());
  if (!field) {
    return nullptr;
  }
  const CellEditor wanted = grid_->stateOf(field).editor;
  QWidget* editor = nullptr;
  if (wanted.create) {
    editor = wanted.create(parent);
  } else if (wanted.kind == CellEditorKind::DropDown) {
    auto* list = new TDBFlatComboBox(parent);
    list->setItems(wanted.items);
    QTimer::singleShot(0, list, [list] { list->showPopup(); });
    editor = list;
  } else {
    const DataType type = field->FieldDataType();
    const bool date = wanted.kind == CellEditorKind::Date || type == DataType::Date;
    DataEdit* edit = date ? static_cast<DataEdit*>(new TDBDateEdit(parent)) : new TDBEdit(parent);
    edit->setFrame(false);
    edit->setTextMargins(inEditor, 0, inEditor, 0);
    if (wanted.kind == CellEditorKind::Selector || wanted.kind == CellEditorKind::Date) {
      auto* button = new EditButton(edit);
      TDBGrid* grid = grid_;
      connect(button, &QAbstractButton::clicked, grid, [grid] {
        if (TField* selected = grid->selectedField(); selected && grid->commitCell()) {
          emit grid->selectorRequested(selected);
        }
      });
    }
    editor = edit;
  }
  if (!wanted.name.isEmpty()) {
    editor->setObjectName(wanted.name);
  }
  editor->setAccessibleName(field->DisplayLabel);
  if (DataControl* control = DataControl::of(editor)) {
    control->setDataSet(grid_->dataSet());
    control->setDataField(field->FieldName());
  }
  grid_->editor_ = editor;
  return editor;
}

void GridDelegate::setEditorData(QWidget*, const QModelIndex&) const {}

void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex&) const
{
  if (DataControl* control = DataControl::of(editor)) {
    control->commit();
  }
}

void GridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const
{
  editor->setGeometry(option.rect.adjusted(1, 1, -1, -1));
}

bool GridDelegate::editorKey(QWidget* editor, QKeyEvent* event)
{
  DataControl* control = DataControl::of(editor);
  if (!control || event->modifiers().testFlag(Qt::AltModifier)) {
    return false;
  }
  const bool list = qobject_cast<QComboBox*>(editor);
  switch (event->key()) {
    case Qt::Key_Escape:
      control->revert();
      emit closeEditor(editor, RevertModelCache);
      return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      if (list) {
        return false;
      }
      break;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Return:
    case Qt::Key_Enter: break;
    default: return false;
  }
  if (!control->commit()) {
    return true;
  }
  emit closeEditor(editor, NoHint);
  QKeyEvent onward(QEvent::KeyPress, event->key(), event->modifiers(), event->text());
  QCoreApplication::sendEvent(grid_, &onward);
  return true;
}

bool GridDelegate::eventFilter(QObject* watched, QEvent* event)
{
  auto* editor = qobject_cast<QWidget*>(watched);
  if (!editor) {
    return false;
  }
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
      }
      return false;
    case QEvent::KeyPress: return editorKey(editor, static_cast<QKeyEvent*>(event));
    case QEvent::FocusOut:
      // The control writes its text as it loses the focus; a refused text keeps editor and focus.
      QTimer::singleShot(0, editor, [this, editor] {
        QWidget* focus = QApplication::focusWidget();
        const DataControl* control = DataControl::of(editor);
        const bool elsewhere = focus && focus != editor && !editor->isAncestorOf(focus) && !QApplication::activePopupWidget();
        if (elsewhere && editor == grid_->cellEditor() && (!control || !control->isPending())) {
          emit closeEditor(editor, NoHint);
        }
      });
      return false;
    default: return false;
  }
}

}  // namespace kalvor
