// Wires the controls of a form from the field descriptions when its window is shown.
#pragma once

#include <QLabel>

#include "data/field.h"

namespace kalvor {

class DataControl;
class TDBGrid;
class TfBase;

class ControlWiring {
 public:
  explicit ControlWiring(TfBase* form) : form_(form) {}
  void run();

 private:
  void wireControl(QWidget* widget, DataControl& control);
  void wireGrid(TDBGrid* grid);
  void wireGridColumns(TDBGrid* grid);
  void wireLabel(QLabel* label);
  QStringList optionsOf(const TField* field) const;

  TfBase* form_;
};

// Read-only presentation of every data-bound control and grid of the form: by the field's flag, or all of them when
// the form allows no edit.
void setControlsReadOnly(TfBase* form, bool noEdit);

}  // namespace kalvor
