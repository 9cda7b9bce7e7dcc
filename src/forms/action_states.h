// Which actions of a form are enabled, and what the main window is told of it.
#pragma once

#include <QHash>
#include <QStringList>
#include <functional>

#include "layer_export.h"

namespace kalvor {

struct ActionFacts {
  bool editing = false;       // master in edit or insert state
  bool changed = false;       // master has unapplied changes
  bool canSave = true;
  bool cannotSelect = false;  // opened with so_CannotSelect
  bool hasFilter = false;
  bool mayEdit = true;        // CheckDataModification, asked for each alone
  bool mayDelete = true;
  bool mayInsert = true;
  bool masterReadOnly = false;
};

// Actions that the facts decide, by name ("acSave"); every other action keeps its state.
KALVOR_RULES QHash<QString, bool> actionStates(const ActionFacts& facts);

struct PositionFacts {
  bool atBeginning = true;  // master at its beginning, at its end
  bool atEnd = true;
  bool canSelectAll = false;  // the focused control is a data grid or a data-bound edit
};

// The lines for the main window ("acGlobalSave=-1"), in their order; enabled tells the state of a form action
// after every adjustment.
KALVOR_RULES QStringList mainWindowActionLines(const std::function<bool(const QString& action)>& enabled,
                                               const PositionFacts& facts);

}  // namespace kalvor
