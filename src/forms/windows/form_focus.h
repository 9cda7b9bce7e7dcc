// What the focused control is to a form.
#pragma once

#include <QWidget>

#include "data/field.h"

namespace kalvor {

class TDBGrid;

// The grid that has the focus, or whose in-cell editor has it.
TDBGrid* focusedGrid(const QWidget* form);
// The field of the focused control: the selected one of a grid, or that of a data-bound control. Null: none.
TField* focusedField(const QWidget* form);
// A data grid, or a data-bound edit.
bool canSelectAll(QWidget* control);
// Writes what was typed into the focused control to its field; SilentAbort when the field refused it (the user was
// told).
void commitFocusedControl(const QWidget* form);
// The first enabled control of a field in tab order, or grid column of it, gets the focus. False: none shows it.
bool focusControlOf(QWidget* form, const TField* field);

}  // namespace kalvor
