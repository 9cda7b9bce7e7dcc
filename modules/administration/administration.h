// What an administrator looks after: users, their rights, number series, how forms and fields are described.
#pragma once

#include "forms/windows/base_browse.h"
#include "forms/windows/base_edit.h"
#include "forms/windows/base_edit_grid.h"

namespace kalvor {

class TfBrUser : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

// The user with the objects that he may log in to. His password is set, never shown.
class TfEdUser : public TfBaseEditMasterDetail {
  Q_OBJECT
 public:
  explicit TfEdUser(QWidget* parent = nullptr);
  void GenerateID(TClientDataSet* dataSet) override;
  void CustomUpdateActionState() override;
  bool isLockedField(TField* field) override;  // the code, once the user is there
  void buildLayout() override;

 protected:
  QString detailKeyField(int dsIndex) const override;

 private:
  void setPassword();
};

class TfEdUserRights : public TfBaseEditGridFilterPanel {
  Q_OBJECT
 public:
  explicit TfEdUserRights(QWidget* parent = nullptr);
  FilterArray BuildTabFilter() override;
};

// Forms come with their modules: here they are only described.
class TfBrFormDescription : public TfBaseBrowseCardNoDelete {
  Q_OBJECT
 public:
  using TfBaseBrowseCardNoDelete::TfBaseBrowseCardNoDelete;
};

class TfEdFormDescription : public TfBaseEditMaster {
  Q_OBJECT
 public:
  using TfBaseEditMaster::TfBaseEditMaster;
  bool CheckDataModification(bool edit, bool remove, bool insert) override;
};

// Fields, and by a link the stored queries they belong to.
class TfEdFieldDescriptions : public TfBaseEditGridFilterMultyQuery {
  Q_OBJECT
 public:
  explicit TfEdFieldDescriptions(QWidget* parent = nullptr);
  FilterArray BuildTabFilter() override;
  bool CheckDataModification(bool edit, bool remove, bool insert) override;
};

class TfEdSeries : public TfBaseEditGridMed {
  Q_OBJECT
 public:
  using TfBaseEditGridMed::TfBaseEditGridMed;
};

}  // namespace kalvor
