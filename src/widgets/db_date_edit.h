// Edit of a date field.
#pragma once

#include "widgets/db_edit.h"

namespace kalvor {

// Takes dates written short ("5", "0503", "5.3") and completes them with today's month and year. A button for
// a calendar may be placed in it (EditButtonPlacement).
class KALVOR_WIDGETS TDBDateEdit : public DataEdit {
  Q_OBJECT
 public:
  using DataEdit::DataEdit;

 protected:
  QString textToStore() const override;
};

}  // namespace kalvor
