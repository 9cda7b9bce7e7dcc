// Keys as a person presses them, Cyrillic too, and what the controls had to say.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include "widgets/data_control.h"

namespace kalvor {

inline void typeText(QWidget* widget, const QString& text)
{
  for (const QChar c : text) {
    QWidget* target = QApplication::focusWidget() && widget->isAncestorOf(QApplication::focusWidget())
                          ? QApplication::focusWidget()
                          : widget;
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
    QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(c));
    QApplication::sendEvent(target, &press);
    QApplication::sendEvent(target, &release);
  }
}

// Collects the messages of the controls while it lives.
class Messages {
 public:
  Messages()
      : before_(setControlMessageHandler([this](QWidget*, const QString& message) { texts.append(message); }))
  {
  }
  ~Messages() { setControlMessageHandler(before_); }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  QStringList texts;

 private:
  ControlMessageHandler before_;
};

}  // namespace kalvor
