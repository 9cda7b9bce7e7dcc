#include "widgets/data_control.h"
#include "widgets/db_grid.h"

namespace kalvor {

bool TDBGrid::editableNow() const
{
  return inCellEditing_ && currentIndex().isValid() && dataSet() && dataSet()->CanModify() &&
         canEditField(selectedField());
}

// Keys and input methods come here too, whatever the model says may be edited.
bool TDBGrid::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
  return index == currentIndex() && editableNow() &&
         stateOf(selectedField()).editor.kind != CellEditorKind::CheckBox && QTableView::edit(index, trigger, event);
}

bool TDBGrid::editCell()
{
  return editor_ || edit(currentIndex(), QAbstractItemView::AllEditTriggers, nullptr);
}

void TDBGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
  if (editor == editor_) {
    editor_ = nullptr;
    QTableView::closeEditor(editor, hint);
  }
}

bool TDBGrid::commitCell()
{
  DataControl* control = DataControl::of(cellEditor());
  return !control || control->commit();
}

void TDBGrid::closeCell()
{
  if (!editor_) {
    return;
  }
  if (DataControl* control = DataControl::of(editor_)) {
    control->revert();
  }
  closeEditor(editor_, QAbstractItemDelegate::RevertModelCache);
}

bool TDBGrid::toggleCell(const QModelIndex& index)
{
  TField* field = model_->fieldAt(index.column());
  if (!inCellEditing_ || index != currentIndex() || !canEditField(field) || !dataSet()->CanModify()) {
    return false;
  }
  const CellEditor box = stateOf(field).editor;
  return attempt(this, [this, field, &box] {
    if (!dataSet()->IsEditing()) {
      dataSet()->Edit();
    }
    const bool checked = variantText(field->Value()) == box.checked;
    field->SetAsString(checked ? box.unchecked : box.checked);
  });
}

}  // namespace kalvor
