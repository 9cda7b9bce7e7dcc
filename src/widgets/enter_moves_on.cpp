#include "widgets/enter_moves_on.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include "widgets/data_control.h"

namespace kalvor {
namespace {

// The toolkit's own way of moving is protected; a key event goes through the same door as a real Tab.
void moveFocus(QWidget* from, bool backward)
{
  QKeyEvent tab(QEvent::KeyPress, backward ? Qt::Key_Backtab : Qt::Key_Tab,
                backward ? Qt::ShiftModifier : Qt::NoModifier);
  QCoreApplication::sendEvent(from, &tab);
}

}  // namespace

EnterMovesOn::EnterMovesOn(QWidget* form) : QObject(form), form_(form)
{
  form->installEventFilter(this);
}

bool EnterMovesOn::eventFilter(QObject* watched, QEvent* event)
{
  if (watched != form_ || event->type() != QEvent::KeyPress) {
    return false;
  }
  auto* key = static_cast<QKeyEvent*>(event);
  const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
  if (!enter || key->modifiers().testFlag(Qt::ControlModifier) || key->modifiers().testFlag(Qt::AltModifier)) {
    return false;
  }
  if (askFirst && askFirst(key)) {
    return true;
  }
  DataControl* control = DataControl::of(QApplication::focusWidget());
  if (!control || !form_->isAncestorOf(control->controlWidget())) {
    return false;
  }
  if (control->commit()) {
    moveFocus(control->controlWidget(), key->modifiers().testFlag(Qt::ShiftModifier));
  }
  return true;
}

}  // namespace kalvor
