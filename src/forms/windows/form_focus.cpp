#include "forms/windows/form_focus.h"

#include <QApplication>
#include <QTabWidget>

#include "data/client_dataset.h"
#include "widgets/data_control.h"
#include "widgets/db_edit.h"
#include "widgets/db_grid.h"

namespace kalvor {

namespace {

QWidget* focusWithin(const QWidget* form)
{
  QWidget* focused = QApplication::focusWidget();
  if (!focused || (focused != form && !form->isAncestorOf(focused))) {
    focused = form->focusWidget();
  }
  return focused;
}

// Brings the tab page forward on which the control lies.
void showPageOf(QWidget* control)
{
  for (QWidget* widget = control; widget; widget = widget->parentWidget()) {
    QWidget* stack = widget->parentWidget();
    auto* tabs = stack ? qobject_cast<QTabWidget*>(stack->parentWidget()) : nullptr;
    if (tabs && tabs->indexOf(widget) >= 0) {
      tabs->setCurrentWidget(widget);
    }
  }
}

}  // namespace

TDBGrid* focusedGrid(const QWidget* form)
{
  for (QWidget* widget = focusWithin(form); widget && widget != form; widget = widget->parentWidget()) {
    if (auto* grid = qobject_cast<TDBGrid*>(widget)) {
      return grid;
    }
  }
  return nullptr;
}

TField* focusedField(const QWidget* form)
{
  if (const TDBGrid* grid = focusedGrid(form)) {
    return grid->selectedField();
  }
  const DataControl* control = DataControl::of(focusWithin(form));
  return control ? control->field() : nullptr;
}

bool canSelectAll(QWidget* control)
{
  return qobject_cast<TDBGrid*>(control) || qobject_cast<DataEdit*>(control);
}

void commitFocusedControl(const QWidget* form)
{
  if (TDBGrid* grid = focusedGrid(form)) {
    if (!grid->commitCell()) {
      throw SilentAbort();
    }
  } else if (DataControl* control = DataControl::of(focusWithin(form))) {
    if (!control->commit()) {
      throw SilentAbort();
    }
  }
}

bool focusControlOf(QWidget* form, const TField* field)
{
  for (QWidget* widget : form->findChildren<QWidget*>()) {
    const DataControl* control = DataControl::of(widget);
    if (control && control->field() == field && !qobject_cast<TDBGrid*>(widget->parentWidget()->parentWidget())) {
      showPageOf(widget);
      widget->setFocus();
      return true;
    }
  }
  for (TDBGrid* grid : form->findChildren<TDBGrid*>()) {
    if (grid->dataSet() == field->DataSet()) {
      showPageOf(grid);
      grid->setFocus();
      grid->selectField(field->FieldName());
      return true;
    }
  }
  return false;
}

}  // namespace kalvor
