#include "widgets/db_text.h"

#include "widgets/theme.h"

namespace kalvor {

TDBText::TDBText(QWidget* parent) : QLabel(parent), DataControl(this)
{
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setFocusPolicy(Qt::NoFocus);
}

void TDBText::showField()
{
  const TField* bound = field();
  const bool number = bound && isNumericType(bound->FieldDataType()) && !bound->OnGetText;
  setText(bound ? bound->DisplayText() : QString());
  setAlignment((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  QPalette colors;
  if (number && bound->AsFloat() < 0) {
    colors.setColor(QPalette::WindowText, theme().negative);
  }
  setPalette(colors);
}

}  // namespace kalvor
