// The month calendar that drops down under a date control.
#pragma once

#include <QDate>
#include <QFrame>
#include <functional>

#include "data/field.h"
#include "layer_export.h"

class QCalendarWidget;
class QLineEdit;

namespace kalvor {

// Escape closes; Left and Right move by a day, Up and Down by a week; Enter and a double click take the date and
// close; losing the focus closes. Frees itself on close.
class BASE_PACKAGE TfDateSelectorForm : public QFrame {
  Q_OBJECT
 public:
  using TakeDate = std::function<void(QDate)>;
  // control: under which it stands. start: invalid = today.
  TfDateSelectorForm(QWidget* control, QDate start, TakeDate take);

  QDate date() const;
  void setDate(QDate date);
  void takeDate();  // hands the date over and closes

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  bool calendarKey(int key);
  void placeUnder(const QWidget* control);

  QCalendarWidget* calendar_;
  TakeDate take_;
};

// Over a control of a field: the record is put into edit state and the field takes the date without time.
BASE_PACKAGE TfDateSelectorForm* showDateSelector(QWidget* control, TField* field);
// Over a plain edit: the text becomes "dd/mm/yyyy", which the filter criteria read.
BASE_PACKAGE TfDateSelectorForm* showDateSelector(QLineEdit* edit);

}  // namespace kalvor
