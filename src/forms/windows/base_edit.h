// Forms that edit records in place: saving all datasets in one call, deleting, asking before closing.
#pragma once

#include "forms/windows/base_form.h"

class QTabWidget;
class QSplitter;

namespace kalvor {

class TDBGridEx;

class BASE_PACKAGE TfBaseEdit : public TfBase {
  Q_OBJECT
 public:
  explicit TfBaseEdit(QWidget* parent = nullptr);

  TClientDataSet* cdsMaster() const { return cdsMaster_; }

  bool FormCloseQuery() override;
  void acInsertRecordExecute() override;
  void acEditRecordExecute() override;
  void acCopyRecordExecute() override;
  void acDeleteRecordExecute() override;
  void acSaveExecute() override;
  void acCancelExecute() override;
  void DeleteRecord() override;
  void InsertRecord() override;
  void EditRecord() override;
  void CopyRecord() override;
  void CopyNew() override;
  void SaveDocument() override;
  // Between the server's yes and the discarding of the change logs.
  virtual void OnSaveBeforeGetData();
  bool lastSaveSucceeded() const { return lastSaveSucceeded_; }

 protected:
  // The numbering requests of the save; null when nothing is to be numbered. Raises when they cannot be built.
  virtual Variant GetOwnerData();
  TClientDataSet* cdsMaster_;

 private:
  bool lastSaveSucceeded_ = true;
};

// The master on pages.
class BASE_PACKAGE TfBaseEditMaster : public TfBaseEdit {
  Q_OBJECT
 public:
  explicit TfBaseEditMaster(QWidget* parent = nullptr);
  QTabWidget* pcMaster() const { return pcMaster_; }
  // Builds the pages from the field descriptions unless the form brought controls of its own.
  void buildLayout() override;
  void CDS_AfterScroll(TClientDataSet* dataSet) override;

 protected:
  QTabWidget* pcMaster_;
};

// The master on pages, its lines in the grid dbgDetail over cdsDetail.
class BASE_PACKAGE TfBaseEditMasterDetail : public TfBaseEditMaster {
  Q_OBJECT
 public:
  explicit TfBaseEditMasterDetail(QWidget* parent = nullptr);
  TClientDataSet* cdsDetail() const { return cdsDetail_; }
  TDBGridEx* dbgDetail() const { return dbgDetail_; }

  void buildLayout() override;
  void CDS_AfterScroll(TClientDataSet* dataSet) override;
  void acDeleteRecordExecute() override;
  void acToggleMasterDetailExecute();

 protected:
  TClientDataSet* cdsDetail_;
  TDBGridEx* dbgDetail_;
  QSplitter* splitter_;
};

}  // namespace kalvor
