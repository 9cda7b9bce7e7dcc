#include "widgets/db_check_box.h"

#include <QKeyEvent>

namespace kalvor {

TDBCheckBox::TDBCheckBox(QWidget* parent) : QCheckBox(parent), DataControl(this) {}

void TDBCheckBox::setValueChecked(const QString& value)
{
  checked_ = value;
  showField();
}

void TDBCheckBox::setValueUnchecked(const QString& value)
{
  unchecked_ = value;
  showField();
}

void TDBCheckBox::showField()
{
  const TField* bound = field();
  setChecked(bound && !bound->IsNull() && bound->AsString() == checked_);
}

void TDBCheckBox::storeField()
{
  field()->SetAsString(isChecked() ? checked_ : unchecked_);
}

void TDBCheckBox::updateAccess() {}

void TDBCheckBox::nextCheckState()
{
  if (!canModify()) {
    return;
  }
  const bool wanted = !isChecked();
  if (!beginChange()) {
    return;
  }
  setChecked(wanted);
  if (!commit()) {
    revert();
  }
}

void TDBCheckBox::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Escape) {
    event->ignore();
    return;
  }
  QCheckBox::keyPressEvent(event);
}

}  // namespace kalvor
