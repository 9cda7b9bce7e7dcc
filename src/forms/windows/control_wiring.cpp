#include "forms/windows/control_wiring.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFrame>

#include "common/sql_text.h"
#include "forms/field_metadata.h"
#include "forms/windows/base_form.h"
#include "forms/windows/base_form_private.h"
#include "forms/windows/form_focus.h"
#include "forms/windows/grid_keys.h"
#include "registry/windows/date_selector.h"
#include "registry/windows/selector_button.h"
#include "registry/windows/selector_edit.h"
#include "session/dm.h"
#include "widgets/db_check_box.h"
#include "widgets/db_combo_box.h"
#include "widgets/db_date_edit.h"
#include "widgets/db_grid_ex.h"
#include "widgets/edit_button.h"
#include "widgets/theme.h"

namespace kalvor {

namespace {

constexpr int movedLabelTag = 3;
constexpr int movedLabelLeft = 10;

// Invalid: the controls keep their own.
QColor sessionReadOnlyColor()
{
  return DM && DM->ReadOnlyColor != 0 ? QColor::fromRgba(DM->ReadOnlyColor) : QColor();
}

bool isPopUpDate(const TField* field)
{
  return hasFlag(field, ffDate) &&
         (field->FieldDataType() == DataType::Date || field->FieldDataType() == DataType::DateTime);
}

void addDateButton(TfBase* form, DataEdit* edit, TField* field)
{
  if (edit->findChild<EditButtonPlacement*>()) {
    return;
  }
  auto* button = new TDateSelectorButton(edit);
  button->setObjectName(QStringLiteral("btn_") + field->FieldName());
  button->setEnabled(!hasFlag(field, ffReadOnly) && form->CheckDataModification(true, false, false));
}

bool hasControlSelector(const TField* field)
{
  return hasFlag(field, ffLookup) || hasFlag(field, ffControlLookup) || hasFlag(field, ffSeries);
}

// Runs a selector for the widget that asks for it.
EditSelectorControl::Runner selectorRunner(TfBase* form, QWidget* asking)
{
  return [form, asking](TSelector& selector, SelectorControl* control) {
    return form->runSelector(selector, control, asking);
  };
}

void addSelectorButton(TfBase* form, DataEdit* edit, TField* field)
{
  TSelector* selector = form->selectorOf(field);
  if (!selector || edit->findChild<EditButtonPlacement*>()) {
    return;
  }
  auto* button = new TSelectorButton(edit, selector, selectorRunner(form, edit));
  button->placement()->setButtonVisible(field->Visible);
  if (!hasFlag(field, ffSeries)) {
    form->SetFieldOnChange(field);
  } else if (qobject_cast<TDBFlatEdit*>(edit)) {
    form->SetSerieFieldOnChange(field);
  }
}

CellEditor selectorCell(TfBase* form, TDBGrid* grid, TField* field)
{
  CellEditor editor;
  TSelector* selector = form->selectorOf(field);
  if (!selector) {
    return editor;
  }
  if (!hasFlag(field, ffSeries)) {
    form->SetFieldOnChange(field);
  }
  editor.kind = CellEditorKind::Selector;
  editor.name = QStringLiteral("btn_") + CreateUniqueID();
  editor.create = [selector, runner = selectorRunner(form, grid)](QWidget* parent) -> QWidget* {
    return new TSelectorEdit(parent, selector, runner);
  };
  return editor;
}

// The button of a cell that is not being edited, or Alt+Down in it.
void runCellButton(TfBase* form, TDBGrid* grid, TField* field)
{
  if (isPopUpDate(field)) {
    showDateSelector(grid->cellEditor() ? grid->cellEditor() : grid, field);
  } else if (TSelector* selector = form->selectorOf(field)) {
    CellSelectorControl cell(grid, field);
    attempt(grid, [&] { form->runSelector(*selector, &cell, grid); });
  }
}

// A label that runs into its control loses characters at its end; the hint keeps the whole caption.
void shortenLabel(QLabel* label, const QWidget* control)
{
  if (label->parentWidget() != control->parentWidget() || (label->parentWidget() && label->parentWidget()->layout())) {
    return;
  }
  const int gap = control->x() - label->x();
  const int width = label->sizeHint().width();
  if (gap >= width || gap < 0 || std::abs(label->y() - control->y()) >= label->height()) {
    return;
  }
  QString caption = label->text();
  label->setToolTip(caption);
  const QString dots = QStringLiteral("...");
  label->setText(caption + dots);
  while (!caption.isEmpty() && label->sizeHint().width() > gap) {
    caption.chop(1);
    label->setText(caption + dots);
  }
  label->resize(label->sizeHint().width(), label->height());
}

// A bare frame is a panel; grids, labels and tabs are frames with a look of their own.
bool isPanel(const QWidget* widget)
{
  return widget->metaObject() == &QFrame::staticMetaObject;
}

bool isPopUpButton(const QAbstractButton* button)
{
  static const QStringList names{QStringLiteral("btnCard"), QStringLiteral("btnDocument"), QStringLiteral("btnLine")};
  return names.contains(button->objectName());
}

QColor menuBarColor()
{
  return QApplication::palette("QMenuBar").color(QPalette::Window);
}

}  // namespace

void ControlWiring::run()
{
  for (QWidget* widget : form_->findChildren<QWidget*>()) {
    if (auto* grid = qobject_cast<TDBGrid*>(widget)) {
      wireGrid(grid);
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
      wireLabel(label);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget); button && isPopUpButton(button)) {
      QObject::connect(button, &QAbstractButton::clicked, form_, [form = form_, button] { form->PopUpButtonClick(button); });
    } else if (DataControl* control = DataControl::of(widget); control && control->field()) {
      wireControl(widget, *control);
    } else if (const QColor color = sessionReadOnlyColor(); color.isValid() && isPanel(widget)) {
      QPalette colors = widget->palette();
      colors.setColor(QPalette::Window, color);
      widget->setPalette(colors);
      widget->setAutoFillBackground(true);
    }
  }
}

QStringList ControlWiring::optionsOf(const TField* field) const
{
  return FieldDescription(form_->fieldDescriptionRow(field)).options();
}

void ControlWiring::wireControl(QWidget* widget, DataControl& control)
{
  TField* field = control.field();
  if (auto* combo = qobject_cast<DataComboBox*>(widget)) {
    if (hasFlag(field, ffOption)) {
      combo->setItems(optionsOf(field));
    }
    if (qobject_cast<TDBComboBox*>(widget) &&
        (hasFlag(field, ffReadOnly) || !form_->CheckDataModification(true, false, false))) {
      control.setReadOnly(true);
      control.setReadOnlyColor(menuBarColor());
    }
  } else if (auto* box = qobject_cast<TDBCheckBox*>(widget)) {
    box->setValueChecked(QStringLiteral("1"));
    box->setValueUnchecked(QStringLiteral("0"));
  } else if (isPopUpDate(field) && (qobject_cast<TDBFlatEdit*>(widget) || qobject_cast<TDBDateEdit*>(widget))) {
    addDateButton(form_, static_cast<DataEdit*>(widget), field);
  } else if (auto* edit = qobject_cast<DataEdit*>(widget); edit && hasControlSelector(field)) {
    addSelectorButton(form_, edit, field);
  }
}

// --- Grids -----------------------------------------------------------------------------------------------------

void ControlWiring::wireGrid(TDBGrid* grid)
{
  grid->setTitleButtons(true);
  if (const QColor color = sessionReadOnlyColor(); color.isValid()) {
    grid->setTitleColor(color);
  }
  grid->setContextMenuPolicy(Qt::CustomContextMenu);
  TfBase* form = form_;
  QObject::connect(grid, &QWidget::customContextMenuRequested, form, [form, grid](const QPoint& at) {
    if (!form->gridMenu()->isEmpty()) {
      form->gridMenu()->popup(grid->viewport()->mapToGlobal(at));
    }
  });
  QObject::connect(grid, &TDBGrid::columnLayoutChanged, form, [form, grid] { form->DoSaveGridView(grid); });
  QObject::connect(grid, &TDBGrid::titleClicked, form, [form, grid](TField* field) {
    form->titleClicked(grid, field,
                       QApplication::keyboardModifiers() & (Qt::ControlModifier | Qt::ShiftModifier)
                           ? TitleClick::AddsToOrder
                           : TitleClick::OrdersByIt);
  });
  QObject::connect(grid, &TDBGrid::pasteRequested, form, [form, grid] { form->pasteRows(grid); });
  QObject::connect(grid, &TDBGrid::columnEntered, form, [form, grid](TField* field) { form->DBG_ColEnter(grid, field); });
  QObject::connect(grid, &TDBGrid::characterTyped, form, [form](const QString& text) { form->FindDialogExecute(text); });
  QObject::connect(grid, &QAbstractItemView::doubleClicked, form, [form, grid] { form->gridDoubleClicked(grid); });
  QObject::connect(grid, &TDBGrid::selectorRequested, form,
                   [form, grid](TField* field) { runCellButton(form, grid, field); });
  grid->keyHandler = [form, grid](QKeyEvent* event) {
    bool used = false;
    form->runGuarded(QStringLiteral("TfBase.DBGridKeyDown"), [&] {
      used = handleGridKey(*grid, *event, {form->inSelectionMode(), form->CheckState()});
    });
    return used;
  };
  wireGridColumns(grid);
  if (!grid->property("tag").isValid()) {
    grid->setProperty("tag", qMax(0, form->GetCdsOptPos(grid->dataSet())));
  }
  form->DoLoadGridView(grid);
}

void ControlWiring::wireGridColumns(TDBGrid* grid)
{
  if (!grid->dataSet() || !grid->dataSet()->Active()) {
    return;
  }
  for (TField* field : grid->dataSet()->Fields()) {
    CellEditor editor;
    if (hasFlag(field, ffOption)) {
      editor.kind = CellEditorKind::DropDown;
      editor.name = QStringLiteral("DBGrcmbBox_") + CreateUniqueID();
      editor.items = optionsOf(field);
    } else if (hasFlag(field, ffYesNo)) {
      editor.kind = CellEditorKind::CheckBox;
    } else if (isPopUpDate(field)) {
      editor.kind = CellEditorKind::Date;
    } else if (hasControlSelector(field)) {
      editor = selectorCell(form_, grid, field);
    } else {
      continue;
    }
    grid->setColumnEditor(field->FieldName(), editor);
  }
}

// --- Labels ----------------------------------------------------------------------------------------------------

void ControlWiring::wireLabel(QLabel* label)
{
  QWidget* buddy = label->buddy();
  const DataControl* control = DataControl::of(buddy);
  const TField* field = control ? control->field() : nullptr;
  if (!field) {
    if (!control && label->property("tag").toInt() == movedLabelTag) {
      label->move(movedLabelLeft, label->y());
    }
    return;
  }
  label->setText(field->Required ? field->DisplayLabel + QStringLiteral(" *") : field->DisplayLabel);
  label->setToolTip(label->text());
  buddy->setToolTip(label->text());
  buddy->setAccessibleName(field->DisplayLabel);
  shortenLabel(label, buddy);
}

// --- Read-only presentation --------------------------------------------------------------------------------------

void setControlsReadOnly(TfBase* form, bool noEdit)
{
  const QColor color = sessionReadOnlyColor();
  for (QWidget* widget : form->findChildren<QWidget*>()) {
    if (auto* grid = qobject_cast<TDBGrid*>(widget)) {
      grid->setReadOnly(noEdit);
    } else if (DataControl* control = DataControl::of(widget); control && control->field()) {
      control->setReadOnly(noEdit || hasFlag(control->field(), ffReadOnly));
      control->setReadOnlyColor(color);
    }
  }
}

}  // namespace kalvor
