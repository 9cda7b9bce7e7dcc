// Enter as the key that goes to the next control.
#pragma once

#include <QObject>
#include <functional>

#include "layer_export.h"

class QKeyEvent;
class QWidget;

namespace kalvor {

// Watches a form: Enter moves to the next control in tab order, Shift+Enter to the one before, when no control
// has used the key. A text that the field refuses keeps the focus. Grids, memos and push buttons use Enter
// themselves. Owned by the form.
class KALVOR_WIDGETS EnterMovesOn : public QObject {
  Q_OBJECT
 public:
  explicit EnterMovesOn(QWidget* form);

  // Asked first; true: the form has done something else with the key.
  std::function<bool(QKeyEvent*)> askFirst;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* form_;
};

}  // namespace kalvor
