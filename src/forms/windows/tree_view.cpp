#include "forms/windows/tree_view.h"

#include <QSet>

#include "forms/messages.h"

namespace kalvor {

namespace {

constexpr int idRole = Qt::UserRole;

class ScrollHeldBack {
 public:
  explicit ScrollHeldBack(TClientDataSet& dataSet)
      : dataSet_(dataSet), before_(std::exchange(dataSet.BeforeScroll, nullptr)),
        after_(std::exchange(dataSet.AfterScroll, nullptr))
  {
  }
  ~ScrollHeldBack()
  {
    dataSet_.BeforeScroll = before_;
    dataSet_.AfterScroll = after_;
  }
  ScrollHeldBack(const ScrollHeldBack&) = delete;
  ScrollHeldBack& operator=(const ScrollHeldBack&) = delete;

 private:
  TClientDataSet& dataSet_;
  DataSetEvent before_, after_;
};

struct TreeRow {
  QString id, text;
};
using TreeRows = QHash<QString, QList<TreeRow>>;  // by parent, "" for the roots

QString withId(const QString& text, const QString& id, const TreeCaption& caption)
{
  return caption.showIds ? QStringLiteral("%1 (%2)").arg(text, id) : text;
}

TField* captionField(const TClientDataSet& dataSet, const TreeCaption& caption)
{
  TField* field = dataSet.FindField(caption.fieldName);
  if (!field) {
    throw DataError(_err_TblFilterField);
  }
  return field;
}

TreeRows rowsByParent(const TClientDataSet& dataSet, const TreeCaption& caption)
{
  const TField* text = captionField(dataSet, caption);
  const TField* id = dataSet.FieldByName(u"Id");
  const TField* parent = dataSet.FieldByName(u"Parent_Id");
  TreeRows rows;
  for (qsizetype row = 0; row < dataSet.RecordCount(); ++row) {
    const QString key = variantText(id->ValueAt(row));
    rows[variantText(parent->ValueAt(row))].append({key, withId(text->DisplayTextAt(row), key, caption)});
  }
  return rows;
}

// Every list of children is used up, so that records that are each other's parents end somewhere.
void addChildren(QTreeWidgetItem* parent, const QString& parentId, TreeRows& rows)
{
  for (const TreeRow& row : rows.take(parentId)) {
    auto* item = new QTreeWidgetItem(parent);
    setTreeItem(item, row.id, row.text);
    if (!row.id.isEmpty()) {
      addChildren(item, row.id, rows);
    }
  }
}

QTreeWidgetItem* itemById(QTreeWidgetItem* item, const QString& id)
{
  for (int i = 0; i < item->childCount(); ++i) {
    QTreeWidgetItem* child = item->child(i);
    if (treeItemId(child) == id) {
      return child;
    }
    if (QTreeWidgetItem* found = itemById(child, id)) {
      return found;
    }
  }
  return nullptr;
}

// Deepest first, the record itself last.
void collectSubtree(const QHash<QString, QStringList>& children, const QString& id, QSet<QString>& seen,
                    QStringList& order)
{
  if (id.isEmpty() || seen.contains(id)) {
    return;
  }
  seen.insert(id);
  for (const QString& child : children.value(id)) {
    collectSubtree(children, child, seen, order);
  }
  order.append(id);
}

}  // namespace

QString treeItemId(const QTreeWidgetItem* item)
{
  return item ? item->data(0, idRole).toString() : QString();
}

void setTreeItem(QTreeWidgetItem* item, const QString& id, const QString& text)
{
  item->setText(0, text);
  item->setData(0, idRole, id);
}

QString treeItemText(const TClientDataSet& dataSet, const TreeCaption& caption)
{
  const TField* id = dataSet.FieldByName(u"Id");
  return withId(captionField(dataSet, caption)->DisplayText(), id->AsString(), caption);
}

void ClearDBTreeView(QTreeWidget& tree, TClientDataSet& dataSet)
{
  const ScrollHeldBack held(dataSet);
  tree.clear();
}

void DStoTV(TClientDataSet& dataSet, QTreeWidget& tree, const TreeCaption& caption)
{
  captionField(dataSet, caption);
  ClearDBTreeView(tree, dataSet);
  TreeRows rows;
  {
    const ScrollHeldBack held(dataSet);
    dataSet.FetchAll();
    rows = rowsByParent(dataSet, caption);
  }
  addChildren(tree.invisibleRootItem(), QString(), rows);
}

void RedrawDBTreeView(QTreeWidget& tree, TClientDataSet& dataSet, const TreeCaption& caption, const QString& selectedId)
{
  DStoTV(dataSet, tree, caption);
  if (!selectedId.isEmpty()) {
    PosItemById(tree, selectedId);
  }
}

QTreeWidgetItem* PosItemById(QTreeWidget& tree, const QString& id)
{
  QTreeWidgetItem* item = id.isEmpty() ? nullptr : itemById(tree.invisibleRootItem(), id);
  if (!item) {
    return nullptr;
  }
  for (QTreeWidgetItem* ancestor = item->parent(); ancestor; ancestor = ancestor->parent()) {
    ancestor->setExpanded(true);
  }
  tree.setCurrentItem(item);
  return item;
}

void DeleteTree(TClientDataSet& dataSet, const QString& id)
{
  dataSet.FetchAll();
  const TField* key = dataSet.FieldByName(u"Id");
  const TField* parent = dataSet.FieldByName(u"Parent_Id");
  QHash<QString, QStringList> children;
  for (qsizetype row = 0; row < dataSet.RecordCount(); ++row) {
    children[variantText(parent->ValueAt(row))].append(variantText(key->ValueAt(row)));
  }
  QSet<QString> seen;
  QStringList order;
  collectSubtree(children, id, seen, order);
  for (const QString& record : order) {
    if (dataSet.Locate(QStringLiteral("Id"), record)) {
      dataSet.Delete();
    }
  }
}

}  // namespace kalvor
