#include "widgets/db_date_edit.h"

#include <QDate>

#include "widgets/field_validator.h"

namespace kalvor {

QString TDBDateEdit::textToStore() const
{
  return completeDate(text(), QDate::currentDate());
}

}  // namespace kalvor
