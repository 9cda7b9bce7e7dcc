// The master as a tree of records ("Id", "Parent_Id", a caption field), the selected one on pages beside it.
#pragma once

#include "forms/windows/base_edit.h"
#include "forms/windows/tree_view.h"

class QSplitter;
class QTabWidget;

namespace kalvor {

// Keys in the tree: F2 goes to the record's controls, Alt+Up and Alt+Down move the node among its siblings, Alt+Left
// puts it beside its parent.
class BASE_PACKAGE TfBaseEditTreeView : public TfBaseEdit {
  Q_OBJECT
 public:
  explicit TfBaseEditTreeView(QWidget* parent = nullptr);

  QTreeWidget* tvMaster() const { return tvMaster_; }
  QTabWidget* pcMaster() const { return pcMaster_; }
  void setTreeCaption(const TreeCaption& caption) { caption_ = caption; }
  const TreeCaption& treeCaption() const { return caption_; }
  QString selectedId() const { return treeItemId(tvMaster_->currentItem()); }

  // Builds the tree from the dataset again and keeps the selected node.
  void redrawTree();
  void moveNode(int step);  // -1 up, 1 down among its siblings; unsaved until the next save
  void promoteNode();

  int DoShowForm(int formId, ShowOption options, const FilterArray& callerFilter, const FilterArray& extraFilter,
                 TSelectionList& selection, const TDefaultValues& defaults, const ParameterArray& parameter) override;
  void acInsertRecordExecute() override;
  void acEditRecordExecute() override;
  void acDeleteRecordExecute() override;
  void acCancelExecute() override;
  void CDS_AfterOpen(TClientDataSet* dataSet) override;
  void CDS_AfterScroll(TClientDataSet* dataSet) override;
  void FormShow() override;
  void buildLayout() override;

 protected:
  void CDS_OnNewRecord(TClientDataSet* dataSet) override;
  virtual void buildRecordSide(QSplitter& splitter);  // beside the tree; the record's pages

 private:
  void nodeSelected(QTreeWidgetItem* item);
  void recordPosted();
  void followRecord();
  void requireMovable() ;
  void renumber(QTreeWidgetItem* parent, const QList<QTreeWidgetItem*>& order);
  QTreeWidgetItem* parentOf(QTreeWidgetItem* item) const;

  QTreeWidget* tvMaster_;
  QTabWidget* pcMaster_;
  TreeCaption caption_{QStringLiteral("Name"), false};
  QString openedOn_;       // the node that a filter line names
  QTreeWidgetItem* insertUnder_ = nullptr;
  bool following_ = false;
};

}  // namespace kalvor
