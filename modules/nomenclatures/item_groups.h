// Item groups as a tree, with the items of the selected group beside it.
#pragma once

#include "forms/windows/base_edit_tree.h"

namespace kalvor {

class TDBGridEx;

// The items are read-only here: Ctrl+Enter and a double click open the item's card.
class TfEdItemGroups : public TfBaseEditTreeView {
  Q_OBJECT
 public:
  explicit TfEdItemGroups(QWidget* parent = nullptr);
  TDBGridEx* dbgItems() const { return dbgItems_; }
  void CDS_AfterScroll(TClientDataSet* dataSet) override;
  void FormShow() override;

 protected:
  QString detailKeyField(int dsIndex) const override;
  void buildRecordSide(QSplitter& splitter) override;
  void gridDoubleClicked(TDBGrid* grid) override;

 private:
  void openItem();
  void readItems();

  TClientDataSet* cdsItems_;
  TDBGridEx* dbgItems_;
  QString shownGroup_;
};

}  // namespace kalvor
