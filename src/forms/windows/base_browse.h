// Lists: records in the grid dbgMaster; edits go through the card form, whose identifier is the list's plus one.
#pragma once

#include "forms/windows/base_form.h"

namespace kalvor {

class TDBGrid;
class TDBGridEx;

class BASE_PACKAGE TfBaseBrowse : public TfBase {
  Q_OBJECT
 public:
  explicit TfBaseBrowse(QWidget* parent = nullptr);

  TClientDataSet* cdsMaster() const { return cdsMaster_; }
  TDBGridEx* dbgMaster() const { return dbgMaster_; }

  // By the show options so_AllowEdit, so_AllowDelete, so_AllowInsert.
  bool CheckDataModification(bool edit, bool remove, bool insert) override;
  void acInsertRecordExecute() override;
  void acEditRecordExecute() override;
  void acDeleteRecordExecute() override;
  void acSelectExecute() override;
  void DeleteRecord() override;
  void InsertRecord() override;
  void EditRecord() override;
  void ImportCDS() override;  // the card imports, unseen; the list shows what came
  void SelectorFormSaved(QObject* form, const QString& recordId) override;
  void buildLayout() override;

 protected:
  // Opens the card; options say what for.
  void openCard(ShowOption options, const FilterArray& filter);
  void gridDoubleClicked(TDBGrid* grid) override;
  FilterArray currentRecordFilter() const;  // "ID" = the current ID
  bool markedOrCurrentRows(const std::function<void()>& visit);

 private:
  TClientDataSet* cdsMaster_;
  TDBGridEx* dbgMaster_;
};

// Adds acShowCard (Ctrl+Enter): the current record on its card.
class BASE_PACKAGE TfBaseBrowseCard : public TfBaseBrowse {
  Q_OBJECT
 public:
  explicit TfBaseBrowseCard(QWidget* parent = nullptr);
  void acInsertRecordExecute() override;
  void acShowCardExecute();

 protected:
  void gridDoubleClicked(TDBGrid* grid) override;
};

class BASE_PACKAGE TfBaseBrowseCardNoDelete : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
  bool CheckDataModification(bool edit, bool remove, bool insert) override;
};

}  // namespace kalvor
