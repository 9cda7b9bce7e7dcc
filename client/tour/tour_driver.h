// Drives the client as a person at the keyboard would: steps run one after the other from the event loop, inside
// modal dialogs too; each waits until the program is ready for it. A step that cannot be taken ends the tour.
#pragma once

#include <QKeySequence>
#include <QObject>
#include <deque>
#include <functional>

class QWidget;

namespace kalvor {

class TourDriver : public QObject {
  Q_OBJECT
 public:
  explicit TourDriver(QString folder, QObject* parent = nullptr);

  using Condition = std::function<bool()>;
  // A step named for the report; runs when ready() holds (at once when empty), or fails the tour after ten seconds.
  void step(const QString& name, Condition ready, std::function<void()> action);
  void picture(const QString& name);            // of everything on the screen, as NN-name.png
  void expect(const QString& what, Condition holds);  // waits for it, fails the tour otherwise
  void start();

  int failures() const { return failures_; }
  int keysPressed() const { return keys_; }

  // What a step does: to the widget that has the focus.
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void type(const QString& text);

  static QWidget* focus();
  static QWidget* dialog();                     // the active modal widget
  static QWidget* visibleWidget(const QString& objectName);

 Q_SIGNALS:
  void finished();

 private:
  struct Step {
    QString name;
    Condition ready;
    std::function<void()> action;
  };
  void poll();
  void fail(const QString& why);
  void savePicture(const QString& name);

  QString folder_;
  std::deque<Step> steps_;
  int pictures_ = 0;
  int keys_ = 0;
  int failures_ = 0;
  int waitedMs_ = 0;
};

}  // namespace kalvor
