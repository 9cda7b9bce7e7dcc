// The selector edit: a data-bound edit whose drop-down is a lookup. In grids it is the editor of a lookup cell.
#pragma once

#include "registry/windows/selector_button.h"
#include "widgets/db_edit.h"
#include "widgets/db_grid.h"

namespace kalvor {

// Named "slct_" and the selector owner's name; shows "..." until it is bound. Its button and Alt+Down run the selector.
class BASE_PACKAGE TSelectorEdit : public TDBEdit {
  Q_OBJECT
 public:
  TSelectorEdit(QWidget* parent, TSelector* selector, EditSelectorControl::Runner runner = {});
  TSelector* selector() const { return control_.selector(); }

 private:
  EditSelectorControl control_;
};

// A grid's current cell, edited or not, as the control of a selector.
class BASE_PACKAGE CellSelectorControl : public SelectorControl {
 public:
  CellSelectorControl(TDBGrid* grid, TField* field) : grid_(grid), field_(field) {}
  QString Text() const override;
  TField* Field() const override { return field_; }
  bool ReadOnly() const override;

 private:
  TDBGrid* grid_;
  TField* field_;
};

}  // namespace kalvor
