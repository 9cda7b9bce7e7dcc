// Small buttons inside the right edge of a single-line control: look-ups, calendars.
#pragma once

#include <QPointer>
#include <QToolButton>

#include "layer_export.h"

namespace kalvor {

// Keeps a button inside the right edge of an edit, as its sibling: one pixel below the edit's top, two lower
// than the edit, one narrower than the edit is high, two pixels from its right edge. The button has no tab
// stop and follows the edit's place, visibility and life; Alt+Down in the edit clicks it. The edit's text keeps
// clear of it. Owned by the edit.
class KALVOR_WIDGETS EditButtonPlacement : public QObject {
  Q_OBJECT
 public:
  EditButtonPlacement(QWidget* edit, QAbstractButton* button);

  // Whether the button shows while the edit does; on at first.
  void setButtonVisible(bool on);
  bool buttonVisible() const { return wanted_; }

  static QRect buttonGeometry(const QRect& edit);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();

  QWidget* edit_;
  QPointer<QAbstractButton> button_;
  bool wanted_ = true;
};

// A flat button made for that place: "…" or an icon.
class KALVOR_WIDGETS EditButton : public QToolButton {
  Q_OBJECT
 public:
  explicit EditButton(QWidget* edit);
  EditButtonPlacement* placement() const { return placement_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  EditButtonPlacement* placement_;
};

}  // namespace kalvor
