#include "widgets/edit_button.h"

#include <QKeyEvent>
#include <QPainter>

#include "widgets/db_edit.h"
#include "widgets/theme.h"

namespace kalvor {

EditButtonPlacement::EditButtonPlacement(QWidget* edit, QAbstractButton* button)
    : QObject(edit), edit_(edit), button_(button)
{
  button->setFocusPolicy(Qt::NoFocus);
  edit->installEventFilter(this);
  connect(edit, &QObject::destroyed, button, &QObject::deleteLater);
  place();
}

QRect EditButtonPlacement::buttonGeometry(const QRect& edit)
{
  const int width = edit.height() - 1;
  return QRect(edit.x() + edit.width() - width - 2, edit.y() + 1, width, edit.height() - 2);
}

void EditButtonPlacement::setButtonVisible(bool on)
{
  wanted_ = on;
  place();
}

void EditButtonPlacement::place()
{
  if (!button_) {
    return;
  }
  if (button_->parentWidget() != edit_->parentWidget()) {
    button_->setParent(edit_->parentWidget());
  }
  const QRect geometry = buttonGeometry(edit_->geometry());
  button_->setGeometry(geometry);
  button_->setVisible(wanted_ && !edit_->isHidden() && edit_->parentWidget());
  button_->raise();
  const int room = wanted_ ? geometry.width() : 0;
  if (auto* dataEdit = qobject_cast<DataEdit*>(edit_); dataEdit && dataEdit->buttonRoom() != room) {
    dataEdit->setButtonRoom(room);
  }
}

bool EditButtonPlacement::eventFilter(QObject*, QEvent* event)
{
  switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
    case QEvent::ParentChange:
    case QEvent::ZOrderChange: place(); break;
    case QEvent::KeyPress: {
      auto* key = static_cast<QKeyEvent*>(event);
      if (button_ && wanted_ && key->key() == Qt::Key_Down && key->modifiers().testFlag(Qt::AltModifier)) {
        button_->click();
        return true;
      }
      break;
    }
    default: break;
  }
  return false;
}

EditButton::EditButton(QWidget* edit) : QToolButton(edit->parentWidget())
{
  setText(QStringLiteral("…"));
  setAccessibleName(QStringLiteral("Избор"));
  setAutoRaise(true);
  setCursor(Qt::ArrowCursor);
  placement_ = new EditButtonPlacement(edit, this);
}

void EditButton::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  const QColor base = palette().color(QPalette::Base);
  const qreal strength = isDown() ? 0.3 : underMouse() && isEnabled() ? 0.15 : 0;
  const QRect face = rect().adjusted(1, 1, -1, -1);
  if (strength > 0) {
    painter.fillRect(face, blend(theme().accent, base, strength));
  }
  painter.setPen(theme().quietLine);
  painter.drawLine(0, spacing::tight, 0, height() - spacing::tight - 1);
  if (!icon().isNull()) {
    const int side = qMin(16, height() - spacing::tight);
    icon().paint(&painter, QRect((width() - side) / 2, (height() - side) / 2, side, side), Qt::AlignCenter,
                 isEnabled() ? QIcon::Normal : QIcon::Disabled);
  } else {
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text));
    painter.drawText(rect(), Qt::AlignCenter, text());
  }
}

}  // namespace kalvor
