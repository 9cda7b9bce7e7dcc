#include "registry/windows/selector_button.h"

#include <QPointer>

#include "common/sql_text.h"
#include "registry/windows/date_selector.h"
#include "registry/windows/type_ahead.h"
#include "widgets/data_control.h"
#include "widgets/theme.h"

namespace kalvor {

EditSelectorControl::EditSelectorControl(QLineEdit* edit, TSelector* selector, Runner runner)
    : edit_(edit), selector_(selector), runner_(std::move(runner))
{
}

EditSelectorControl::EditSelectorControl(QLineEdit* edit, QObject* owner, const QString& description,
                                         TClientDataSet* dataSet)
    : edit_(edit), own_(std::make_unique<TSelector>(owner, this, description, dataSet)), selector_(own_.get())
{
}

QString EditSelectorControl::Text() const
{
  return searched_.value_or(edit_->text());
}

TField* EditSelectorControl::Field() const
{
  const DataControl* control = DataControl::of(edit_);
  return control ? control->field() : nullptr;
}

bool EditSelectorControl::ReadOnly() const
{
  const DataControl* control = DataControl::of(edit_);
  return control && control->readOnly();
}

void EditSelectorControl::putTextBack()
{
  DataControl* control = DataControl::of(edit_);
  if (control && control->isPending()) {
    control->revert();
  }
}

void EditSelectorControl::run()
{
  const QPointer<QLineEdit> edit = edit_;
  attempt(edit_, [&] {
    const DataControl* control = DataControl::of(edit_);
    if (control && control->isPending() && selector_->GetIndex() < 0) {
      return;
    }
    searched_ = edit_->text();
    putTextBack();
    runner_ ? runner_(*selector_, this) : selector_->Execute();
  });
  if (edit) {
    searched_.reset();
  }
}

// --- Buttons ---------------------------------------------------------------------------------------------------

TSelectorButton::TSelectorButton(QLineEdit* edit, TSelector* selector, EditSelectorControl::Runner runner)
    : EditButton(edit), control_(edit, selector, std::move(runner))
{
  prepare(edit);
}

TSelectorButton::TSelectorButton(QLineEdit* edit, QObject* owner, const QString& description, TClientDataSet* dataSet)
    : EditButton(edit), control_(edit, owner, description, dataSet)
{
  prepare(edit);
}

void TSelectorButton::prepare(QLineEdit* edit)
{
  setText(QStringLiteral("..."));
  setObjectName(QStringLiteral("slct_") + CreateUniqueID());
  setAccessibleName(QStringLiteral("Избор"));
  connect(this, &QAbstractButton::clicked, this, [this] { control_.run(); });
  new TypeAhead(edit, &control_, this);
}

TDateSelectorButton::TDateSelectorButton(QWidget* control) : EditButton(control)
{
  setIcon(kalvor::icon(QStringLiteral("view-calendar")));
  setAccessibleName(QStringLiteral("Календар"));
  connect(this, &QAbstractButton::clicked, control, [control] {
    const DataControl* bound = DataControl::of(control);
    if (TField* field = bound ? bound->field() : nullptr) {
      showDateSelector(control, field);
    }
  });
}

}  // namespace kalvor
