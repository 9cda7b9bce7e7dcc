// How one column of a grid looks and is edited.
#pragma once

#include <QColor>
#include <QStringList>
#include <functional>

#include "layer_export.h"

class QWidget;

namespace kalvor {

// A column as the user arranged it: what a stored view keeps.
struct GridColumn {
  QString fieldName;
  int width = 0;            // pixels
  QColor color;             // background; invalid = the grid's
  bool visible = true;
  Qt::Alignment alignment;  // none = by data type
  bool readOnly = false;

  bool operator==(const GridColumn&) const = default;
};

enum class CellEditorKind : quint8 { ByType, DropDown, CheckBox, Selector, Date };

struct CellEditor {
  CellEditorKind kind = CellEditorKind::ByType;
  QString name = {};                            // object name of the editor
  QStringList items = {};                        // of a drop-down
  QString checked = QStringLiteral("1");       // of a check box
  QString unchecked = QStringLiteral("0");
  // Makes the editor instead of the grid; a DataControl, which the grid binds. Empty = the grid's own.
  std::function<QWidget*(QWidget* parent)> create = {};
};

// What a cell is about to be painted with; a handler changes what it wants to.
struct CellColors {
  QColor background;
  QColor text;
  bool current = false;  // the cell with the cursor
  bool marked = false;   // its row is marked
};

}  // namespace kalvor
