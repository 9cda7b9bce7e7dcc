#include "forms/windows/filter_controls.h"

#include <QAction>
#include <QKeyEvent>
#include <QWheelEvent>

#include "forms/form_filters.h"
#include "forms/windows/form_server.h"
#include "registry/form_descriptions.h"
#include "registry/windows/form_registry.h"
#include "session/error_log.h"
#include "session/server_calls.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

const QString everything = QStringLiteral("(всички)");

// A list that drops down or another window in front does not count.
bool movesFocus(const QFocusEvent* event)
{
  return event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason &&
         event->reason() != Qt::MenuBarFocusReason;
}

void tellEntered(const PanelControlEvents& events, const QFocusEvent* event)
{
  if (movesFocus(event) && events.entered) {
    events.entered();
  }
}

// What leaving asks the user must not come in the middle of the focus change.
void tellLeft(QObject* control, const PanelControlEvents& events, const QFocusEvent* event)
{
  if (movesFocus(event) && events.left) {
    QMetaObject::invokeMethod(control, events.left, Qt::QueuedConnection);
  }
}

bool takesAway(const QKeyEvent* event)
{
  return event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
}

}  // namespace

// --- Text ------------------------------------------------------------------------------------------------------

FlatFilterEdit::FlatFilterEdit(QWidget* parent) : QLineEdit(parent)
{
  setClearButtonEnabled(true);
}

void FlatFilterEdit::focusInEvent(QFocusEvent* event)
{
  tellEntered(events, event);
  QLineEdit::focusInEvent(event);
}

void FlatFilterEdit::focusOutEvent(QFocusEvent* event)
{
  QLineEdit::focusOutEvent(event);
  tellLeft(this, events, event);
}

// --- Positions -------------------------------------------------------------------------------------------------

FlatFilterDropDown::FlatFilterDropDown(QWidget* parent) : QComboBox(parent)
{
  setPlaceholderText(everything);
  setCurrentIndex(-1);
}

void FlatFilterDropDown::setValue(const Variant& value)
{
  const int position = value.toInt();
  setCurrentIndex(position >= 0 && position < count() ? position : -1);
}

void FlatFilterDropDown::setItems(const QStringList& items)
{
  const int selected = currentIndex();
  clear();
  addItems(items);
  setCurrentIndex(selected < count() ? selected : -1);
}

void FlatFilterDropDown::focusInEvent(QFocusEvent* event)
{
  tellEntered(events, event);
  QComboBox::focusInEvent(event);
}

void FlatFilterDropDown::focusOutEvent(QFocusEvent* event)
{
  QComboBox::focusOutEvent(event);
  tellLeft(this, events, event);
}

void FlatFilterDropDown::keyPressEvent(QKeyEvent* event)
{
  if (takesAway(event)) {
    setCurrentIndex(-1);
  } else {
    QComboBox::keyPressEvent(event);
  }
}

// Scrolling over the panel must not change the filter.
void FlatFilterDropDown::wheelEvent(QWheelEvent* event)
{
  event->ignore();
}

// --- Keys ------------------------------------------------------------------------------------------------------

EnhancedFilterDropDown::EnhancedFilterDropDown(int lookupForm, const QString& displayField, QWidget* parent)
    : QLineEdit(parent), lookupForm_(lookupForm), displayField_(displayField)
{
  setReadOnly(true);
  setPlaceholderText(everything);
  QAction* button = addAction(icon(QStringLiteral("edit-find")), QLineEdit::TrailingPosition);
  connect(button, &QAction::triggered, this, [this] { openLookup(); });
}

void EnhancedFilterDropDown::setValue(const Variant& value)
{
  const QString key = variantText(value).trimmed();
  if (key == key_) {
    return;
  }
  key_ = key;
  setText(key.isEmpty() ? QString() : displayTextOf(key));
  setCursorPosition(0);
}

QString EnhancedFilterDropDown::displayTextOf(const QString& key) const
{
  Variant shown;
  int found = 0;
  loggingErrors(QStringLiteral("TfBaseEditGridFilter.CheckPblFilter"), [&] {
    RemoteCalls& server = sessionCalls();
    const int query = server.Call(QStringLiteral("GetQueryID"), {lookupForm_, 0}).toInt();
    const TFormData* description = query > 0 ? nullptr : GetFromDataObject(QString::number(lookupForm_), 0);
    found = requestValue(server, query > 0 ? query : int(TableColumns), description ? description->BaseTable : QString(),
                         displayField_, recordFilter(QStringLiteral("Id"), key), shown, RowsWanted::First);
  });
  return found > 0 && !isNull(shown) ? variantText(shown) : key;
}

void EnhancedFilterDropDown::openLookup()
{
  TFieldSet key, shown;
  key.FieldName = QStringLiteral("Id");
  shown.FieldName = displayField_;
  TSelectionList selection{{key, shown}};
  RequestForm(lookupForm_, so_SelectSingle, {}, {}, {}, selection, {}, this, nullptr);
}

bool EnhancedFilterDropDown::ProcessSelectedRecords(const TSelectionList& selection, ShowOption)
{
  const TRecordLine chosen = selection.value(0);
  if (chosen.size() < 2) {
    return false;
  }
  key_ = variantText(chosen[0].Value);
  setText(variantText(chosen[1].Value));
  setCursorPosition(0);
  setFocus();
  if (events.left) {
    QMetaObject::invokeMethod(this, events.left, Qt::QueuedConnection);
  }
  return true;
}

void EnhancedFilterDropDown::focusInEvent(QFocusEvent* event)
{
  tellEntered(events, event);
  QLineEdit::focusInEvent(event);
}

void EnhancedFilterDropDown::focusOutEvent(QFocusEvent* event)
{
  QLineEdit::focusOutEvent(event);
  tellLeft(this, events, event);
}

void EnhancedFilterDropDown::keyPressEvent(QKeyEvent* event)
{
  const bool typed = !event->text().isEmpty() && event->text().at(0).isPrint() &&
                     !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
  const bool opens = event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier);
  if (takesAway(event)) {
    setValue(QString());
  } else if (typed || opens) {
    openLookup();
  } else {
    QLineEdit::keyPressEvent(event);
  }
}

}  // namespace kalvor
