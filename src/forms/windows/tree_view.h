// A dataset of records with "Id" and "Parent_Id" as a tree: items keep their record's "Id".
#pragma once

#include <QTreeWidget>

#include "data/client_dataset.h"
#include "layer_export.h"

namespace kalvor {

struct TreeCaption {
  QString fieldName;
  bool showIds = false;  // " (Id)" behind the text
};

// The "Id" of an item's record; "" for none.
BASE_PACKAGE QString treeItemId(const QTreeWidgetItem* item);
BASE_PACKAGE void setTreeItem(QTreeWidgetItem* item, const QString& id, const QString& text);
// Text of the dataset's current record as an item.
BASE_PACKAGE QString treeItemText(const TClientDataSet& dataSet, const TreeCaption& caption);

// Empties the tree; the dataset's scroll handlers are held back meanwhile.
BASE_PACKAGE void ClearDBTreeView(QTreeWidget& tree, TClientDataSet& dataSet);
// Builds the tree anew from the records that pass the dataset's own filter, in its order: roots are those with a null
// "Parent_Id". Reads all records; the current one stays. DataError (_err_TblFilterField) without the caption field.
BASE_PACKAGE void DStoTV(TClientDataSet& dataSet, QTreeWidget& tree, const TreeCaption& caption);
// DStoTV, and then the item with that id is selected, if it is still there.
BASE_PACKAGE void RedrawDBTreeView(QTreeWidget& tree, TClientDataSet& dataSet, const TreeCaption& caption,
                                   const QString& selectedId = {});
// Selects the item with that id and expands its ancestors; null when there is none.
BASE_PACKAGE QTreeWidgetItem* PosItemById(QTreeWidget& tree, const QString& id);
// Deletes the record with that id after everything below it, deepest first.
BASE_PACKAGE void DeleteTree(TClientDataSet& dataSet, const QString& id);

}  // namespace kalvor
