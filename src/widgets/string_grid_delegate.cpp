#include "widgets/string_grid_delegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include "widgets/edit_button.h"
#include "widgets/string_grid.h"
#include "widgets/theme.h"
#include "widgets/theme_painting.h"

namespace kalvor {

namespace {

// The toolkit's edit keeps two pixels itself, and the editor stands one inside the cell.
constexpr int inStringEditor = spacing::cellPadding - 3;
constexpr int shownItems = 16;

QString editorText(const QWidget* editor)
{
  if (const auto* list = qobject_cast<const QComboBox*>(editor)) {
    return list->currentText();
  }
  const auto* edit = qobject_cast<const QLineEdit*>(editor);
  return edit ? edit->text() : QString();
}

QComboBox* makeList(QWidget* parent, const QStringList& items)
{
  auto* list = new QComboBox(parent);
  list->setEditable(true);
  list->setInsertPolicy(QComboBox::NoInsert);
  list->setFrame(false);
  list->setMaxVisibleItems(shownItems);
  list->addItems(items);
  list->view()->setMinimumWidth(list->view()->sizeHintForColumn(0) + list->view()->verticalScrollBar()->sizeHint().width() +
                                spacing::wide);
  list->completer()->setCompletionMode(QCompleter::InlineCompletion);
  list->completer()->setCaseSensitivity(Qt::CaseInsensitive);
  return list;
}

QRect markRect(const QRect& cell)
{
  return QRect(cell.right() - cell.height() + 1, cell.top(), cell.height(), cell.height());
}

}  // namespace

QString completedItem(const QString& typed, const QStringList& items)
{
  if (typed.isEmpty() || items.contains(typed)) {
    return typed;
  }
  const QString wanted = typed.trimmed();
  const auto first = [&](auto matches) -> QString {
    const auto found = std::find_if(items.begin(), items.end(), matches);
    return found == items.end() ? QString() : *found;
  };
  const QString same = first([&](const QString& item) { return item.compare(wanted, Qt::CaseInsensitive) == 0; });
  if (!same.isEmpty() || wanted.isEmpty()) {
    return same.isEmpty() ? typed : same;
  }
  const QString begun = first([&](const QString& item) { return item.startsWith(wanted, Qt::CaseInsensitive); });
  if (!begun.isEmpty()) {
    return begun;
  }
  const QStringList holding = items.filter(wanted, Qt::CaseInsensitive);
  return holding.size() == 1 ? holding.first() : typed;
}

StringGridDelegate::StringGridDelegate(TStringGrid* grid) : QStyledItemDelegate(grid), grid_(grid) {}

QSize StringGridDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
  return QSize(64, textLineHeight(option.fontMetrics));
}

void StringGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
  const QPalette& palette = option.palette;
  const StringCellEditor editor = grid_->editorOf(index.column(), index.row() + 1);
  const bool current = index == grid_->currentIndex();
  QColor background = palette.color(index.row() % 2 ? QPalette::AlternateBase : QPalette::Base);
  if (const QColor color = grid_->columnDescriptor(index.column()).color; color.isValid()) {
    background = color;
  }
  if (editor.kind == StringCellEditor::Kind::None) {
    background = theme().readOnly;
  }
  if (index.row() == grid_->currentIndex().row()) {
    background = blend(theme().accent, background, 0.12);
  }
  painter->fillRect(option.rect, background);
  painter->setPen(theme().quietLine);
  painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
  painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
  QRect textRect = option.rect.adjusted(spacing::cellPadding, 0, -spacing::cellPadding - 1, 0);
  if (current && (editor.kind == StringCellEditor::Kind::DropDown || editor.kind == StringCellEditor::Kind::Ellipsis)) {
    textRect.setRight(textRect.right() - option.rect.height() + spacing::tight);
    drawCellMark(painter, markRect(option.rect),
                 editor.kind == StringCellEditor::Kind::Ellipsis ? CellMark::Ellipsis : CellMark::DropDown,
                 theme().accent);
  }
  const bool enabled = option.state & QStyle::State_Enabled;
  painter->setPen(palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::Text));
  painter->setFont(option.font);
  painter->drawText(textRect, int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
                    option.fontMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideRight,
                                                  textRect.width()));
  if (current) {
    const bool active = grid_->hasFocus() || grid_->isAncestorOf(QApplication::focusWidget());
    painter->setPen(QPen(active ? theme().accent : theme().quietText, active ? 2 : 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(active ? option.rect.adjusted(1, 1, -1, -1) : option.rect.adjusted(0, 0, -1, -1));
  }
}

QWidget* StringGridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
  const StringCellEditor wanted = grid_->editorOf(index.column(), index.row() + 1);
  QWidget* editor = nullptr;
  if (wanted.kind == StringCellEditor::Kind::DropDown) {
    editor = makeList(parent, wanted.items);
  } else if (wanted.kind != StringCellEditor::Kind::None) {
    auto* edit = new QLineEdit(parent);
    edit->setFrame(false);
    edit->setTextMargins(inStringEditor, 0, inStringEditor, 0);
    if (wanted.kind == StringCellEditor::Kind::Ellipsis) {
      auto* button = new EditButton(edit);
      button->setObjectName(QStringLiteral("cellButton"));
      if (!wanted.icon.isEmpty()) {
        button->setIcon(kalvor::icon(wanted.icon));
      }
      edit->setTextMargins(inStringEditor, 0, inStringEditor + textLineHeight(edit->fontMetrics()), 0);
      // Queued: the button goes with the edit that the press ends.
      connect(button, &QAbstractButton::clicked, grid_, &TStringGrid::pressEllipsis, Qt::QueuedConnection);
    }
    editor = edit;
  }
  if (editor) {
    editor->setObjectName(QStringLiteral("cellEditor"));
    editor->setAccessibleName(grid_->Cells(index.column(), 0).trimmed());
  }
  editor_ = editor;
  return editor;
}

void StringGridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
  const QString text = index.data(Qt::EditRole).toString();
  if (auto* list = qobject_cast<QComboBox*>(editor)) {
    list->setCurrentIndex(list->findText(text));
    list->setEditText(text);
    list->lineEdit()->selectAll();
  } else if (auto* edit = qobject_cast<QLineEdit*>(editor)) {
    edit->setText(text);
    edit->selectAll();
  }
}

void StringGridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
  const StringCellEditor::Kind kind = grid_->editorOf(index.column(), index.row() + 1).kind;
  const QString typed = editorText(editor);
  const QString text = kind == StringCellEditor::Kind::DropDown
                           ? completedItem(typed, grid_->editorOf(index.column(), index.row() + 1).items)
                           : typed;
  if (text != index.data(Qt::EditRole).toString()) {
    model->setData(index, text, Qt::EditRole);
  }
}

void StringGridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex&) const
{
  editor->setGeometry(option.rect.adjusted(1, 1, -1, -1));
}

void StringGridDelegate::end(bool keep)
{
  if (QWidget* editor = editor_) {
    if (keep) {
      emit commitData(editor);
    }
    editor_ = nullptr;
    emit closeEditor(editor, QAbstractItemDelegate::NoHint);
  }
}

bool StringGridDelegate::editorKey(QWidget* editor, QKeyEvent* event)
{
  auto* list = qobject_cast<QComboBox*>(editor);
  const bool alt = event->modifiers().testFlag(Qt::AltModifier);
  const bool ctrl = event->modifiers().testFlag(Qt::ControlModifier);
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const bool down = event->key() == Qt::Key_Down;
  if ((alt && down) || event->key() == Qt::Key_F4 || (ctrl && enter)) {
    list ? list->showPopup() : grid_->pressEllipsis();
    return true;
  }
  if (alt || ctrl) {
    return false;
  }
  if (event->key() == Qt::Key_Escape) {
    end(false);
    return true;
  }
  const bool upOrDown = down || event->key() == Qt::Key_Up;
  const bool tab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
  if (!enter && !tab && (!upOrDown || list)) {
    return false;
  }
  end(true);
  QKeyEvent onward(QEvent::KeyPress, event->key(), event->modifiers(), event->text());
  QCoreApplication::sendEvent(grid_, &onward);
  return true;
}

bool StringGridDelegate::eventFilter(QObject* watched, QEvent* event)
{
  auto* editor = qobject_cast<QWidget*>(watched);
  if (!editor || editor != editor_) {
    return false;
  }
  if (event->type() == QEvent::KeyPress) {
    return editorKey(editor, static_cast<QKeyEvent*>(event));
  }
  if (event->type() == QEvent::ShortcutOverride) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape || key == Qt::Key_F4) {
      event->accept();
      return true;
    }
    return false;
  }
  if (event->type() == QEvent::FocusOut) {
    QTimer::singleShot(0, editor, [this, editor] {
      const QWidget* focus = QApplication::focusWidget();
      if (editor == editor_ && focus != editor && !(focus && editor->isAncestorOf(focus)) &&
          !QApplication::activePopupWidget()) {
        end(true);
      }
    });
  }
  return false;
}

}  // namespace kalvor
