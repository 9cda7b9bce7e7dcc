#include "tour_driver.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <cstdio>

namespace kalvor {

namespace {

constexpr int pollMs = 20;
constexpr int patienceMs = 10000;
constexpr QSize screenSize(1366, 768);

}  // namespace

TourDriver::TourDriver(QString folder, QObject* parent) : QObject(parent), folder_(std::move(folder))
{
  QDir().mkpath(folder_);
}

void TourDriver::step(const QString& name, Condition ready, std::function<void()> action)
{
  steps_.push_back({name, std::move(ready), std::move(action)});
}

void TourDriver::picture(const QString& name)
{
  // One turn of the event loop before the picture, so that everything is painted.
  step(QStringLiteral("settle"), {}, [] {});
  step(QStringLiteral("picture ") + name, {}, [this, name] { savePicture(name); });
}

void TourDriver::expect(const QString& what, Condition holds)
{
  step(what, std::move(holds), [what] { std::fprintf(stderr, "  holds: %s\n", qPrintable(what)); });
}

void TourDriver::start()
{
  QTimer::singleShot(0, this, &TourDriver::poll);
}

void TourDriver::poll()
{
  if (steps_.empty()) {
    Q_EMIT finished();
    return;
  }
  // What a window manager does when a dialog closes; it takes a turn of the event loop.
  bool activating = false;
  if (!QApplication::activeWindow() && !dialog())
    for (const Qt::WindowType type : {Qt::Window, Qt::Dialog})
      for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowType() == type) {
          window->activateWindow();
          activating = !QApplication::activeWindow();
        }
  if (activating || (steps_.front().ready && !steps_.front().ready())) {
    waitedMs_ += pollMs;
    if (waitedMs_ > patienceMs) {
      fail(QStringLiteral("not ready for: ") + steps_.front().name);
      return;
    }
    QTimer::singleShot(pollMs, this, &TourDriver::poll);
    return;
  }
  waitedMs_ = 0;
  const Step current = steps_.front();
  steps_.pop_front();
  // The next turn is scheduled first: the action may open a modal dialog and return only when that closes.
  QTimer::singleShot(pollMs, this, &TourDriver::poll);
  current.action();
}

void TourDriver::fail(const QString& why)
{
  ++failures_;
  std::fprintf(stderr, "The tour stops, %s\n", qPrintable(why));
  if (const QWidget* widget = focus())
    std::fprintf(stderr, "  focus: %s %s\n", widget->metaObject()->className(), qPrintable(widget->objectName()));
  savePicture(QStringLiteral("stopped"));
  steps_.clear();
  Q_EMIT finished();
}

void TourDriver::savePicture(const QString& name)
{
  QPixmap canvas(screenSize);
  canvas.fill(QColor(0x5b, 0x6b, 0x7b));
  QPainter painter(&canvas);
  QWidgetList windows;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible() && window->width() > 0)
      windows.append(window);
  // Biggest first: the main window lies under its dialogs and lists.
  std::stable_sort(windows.begin(), windows.end(), [](const QWidget* a, const QWidget* b) {
    return a->width() * a->height() > b->width() * b->height();
  });
  // On top stands what the keys go to, and its lists.
  std::stable_partition(windows.begin(), windows.end(),
                        [](const QWidget* window) { return window != dialog() && window->windowType() != Qt::Popup; });
  std::stable_partition(windows.begin(), windows.end(),
                        [](const QWidget* window) { return window->windowType() != Qt::Popup; });
  QPoint popupsBy;  // the lists of a dialog move with it
  for (QWidget* window : windows) {
    QPoint at = window->frameGeometry().topLeft();
    if (window->windowType() == Qt::Popup)
      at += popupsBy;
    const bool dialogWindow = window->isModal() || window->windowType() == Qt::Dialog;
    if (dialogWindow || windows.size() == 1)
      at = QPoint((screenSize.width() - window->width()) / 2, (screenSize.height() - window->height()) / 2);
    if (window->size() == screenSize || window->width() > screenSize.width() - 40)
      at = QPoint(0, 0);
    if (window->isModal())
      popupsBy = at - window->frameGeometry().topLeft();
    if (dialogWindow && !window->windowTitle().isEmpty()) {
      const QRect title(at.x() - 1, at.y() - 26, window->width() + 2, 26);
      painter.fillRect(title.adjusted(0, 0, 0, window->height() + 1), QColor(0x2f, 0x3b, 0x47));
      painter.setPen(Qt::white);
      painter.drawText(title.adjusted(8, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, window->windowTitle());
    }
    painter.drawPixmap(at, window->grab());
  }
  painter.end();
  const QString file = QStringLiteral("%1/%2-%3.png").arg(folder_).arg(++pictures_, 2, 10, QLatin1Char('0')).arg(name);
  if (!canvas.save(file)) {
    ++failures_;
    std::fprintf(stderr, "Cannot write %s\n", qPrintable(file));
  }
}

void TourDriver::key(int key, Qt::KeyboardModifiers modifiers)
{
  ++keys_;
  if (QWidget* widget = focus())
    QTest::keyClick(widget, Qt::Key(key), modifiers);
}

void TourDriver::type(const QString& text)
{
  for (const QChar character : text) {
    ++keys_;
    const int code = character.unicode() < 128 ? character.toUpper().unicode() : 0;
    for (const QEvent::Type kind : {QEvent::KeyPress, QEvent::KeyRelease})
      if (QWidget* widget = focus()) {
        QKeyEvent event(kind, code, Qt::NoModifier, QString(character));
        QApplication::sendEvent(widget, &event);
      }
  }
}

QWidget* TourDriver::focus()
{
  if (QWidget* popup = QApplication::activePopupWidget())
    return popup->focusWidget() ? popup->focusWidget() : popup;
  QWidget* window = dialog() ? dialog() : QApplication::activeWindow();
  QWidget* widget = QApplication::focusWidget();
  if (widget && (!window || widget->window() == window))
    return widget;
  return window && window->focusWidget() ? window->focusWidget() : window;
}

QWidget* TourDriver::dialog()
{
  return QApplication::activeModalWidget();
}

QWidget* TourDriver::visibleWidget(const QString& objectName)
{
  for (QWidget* widget : QApplication::allWidgets())
    if (widget->objectName() == objectName && widget->isVisible())
      return widget;
  return nullptr;
}

}  // namespace kalvor
