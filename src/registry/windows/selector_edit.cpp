#include "registry/windows/selector_edit.h"

#include "registry/windows/type_ahead.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

// The toolkit's edit keeps two pixels itself, and the editor stands one inside the cell.
constexpr int inCellEditor = spacing::cellPadding - 3;

}  // namespace

TSelectorEdit::TSelectorEdit(QWidget* parent, TSelector* selector, EditSelectorControl::Runner runner)
    : TDBEdit(parent), control_(this, selector, std::move(runner))
{
  setText(QStringLiteral("..."));
  setFrame(false);
  setTextMargins(inCellEditor, 0, inCellEditor, 0);
  setObjectName(QStringLiteral("slct_") + (selector->Owner ? selector->Owner->objectName() : QString()));
  auto* button = new EditButton(this);
  button->setText(QStringLiteral("..."));
  button->setAccessibleName(QStringLiteral("Избор"));
  connect(button, &QAbstractButton::clicked, this, [this] { control_.run(); });
  new TypeAhead(this, &control_, this);
}

QString CellSelectorControl::Text() const
{
  const auto* edit = qobject_cast<QLineEdit*>(grid_->cellEditor());
  return edit ? edit->text() : field_->EditText();
}

bool CellSelectorControl::ReadOnly() const
{
  return !grid_->canEditField(field_);
}

}  // namespace kalvor
