// What keys do in the grids of a form, before the grid itself sees them.
#pragma once

#include <QKeyEvent>

#include "layer_export.h"

namespace kalvor {

class TDBGrid;

struct GridKeyFacts {
  bool selectionMode = false;   // the form was opened to choose records
  bool masterEditing = false;   // the form's master is being written
};

// True when the key is used up. Ctrl+Delete does nothing. Enter moves like Tab unless the form is to choose a record
// with it: to the next column, behind the last one to the next record; at the end of an editable grid whose master is
// being edited a new record is appended. Shift+Enter goes back.
BASE_PACKAGE bool handleGridKey(TDBGrid& grid, const QKeyEvent& event, const GridKeyFacts& facts);

}  // namespace kalvor
