// Forms that edit records in place: saving all datasets in one call, deleting, asking before closing.
#pragma once

#include "forms/windows/base_form.h"

class QTabWidget;
class QSplitter;

namespace kalvor {

class BarcodeEntry;
class SaveRequest;
class TDBGrid;
class TDBGridEx;
struct RecordPosition;
struct SaveDataSet;

class BASE_PACKAGE TfBaseEdit : public TfBase {
  Q_OBJECT
 public:
  explicit TfBaseEdit(QWidget* parent = nullptr);
  ~TfBaseEdit() override;

  TClientDataSet* cdsMaster() const { return cdsMaster_; }

  bool FormCloseQuery() override;
  void acInsertRecordExecute() override;
  void acEditRecordExecute() override;
  void acCopyRecordExecute() override;
  void acDeleteRecordExecute() override;
  void acSaveExecute() override;
  void acCancelExecute() override;
  void acImportExecute() override;
  void DeleteRecord() override;
  void InsertRecord() override;
  void EditRecord() override;
  void CopyRecord() override;
  void ImportCDS() override;
  void SaveDocument() override;
  // Between the server's yes and the discarding of the change logs.
  virtual void OnSaveBeforeGetData();
  // A scanned code; kind 1 = a bar code of ours, else the number that the document's contractor uses.
  virtual void BarcodeCallBack(const QString& code, double quantity, int kind);
  // A character typed anywhere in the form, after the form's own keys. True: it began a bar code and is used up.
  bool FormKeyPress(QChar typed);
  void FormShow() override;
  bool lastSaveSucceeded() const { return lastSaveSucceeded_; }

 protected:
  // The numbering requests of the save; null when nothing is to be numbered. Raises when they cannot be built.
  virtual Variant GetOwnerData();
  bool eventFilter(QObject* watched, QEvent* event) override;
  TClientDataSet* cdsMaster_;

 private:
  QList<SaveDataSet> saveDataSets() const;
  bool sendChanges(const QList<SaveDataSet>& dataSets);
  void finishSave(const QList<SaveDataSet>& dataSets, const QList<RecordPosition>& positions, const QString& savedId);
  void readMasterAnew(const QString& savedId);
  void returnToEdit(bool wasEditing, const QString& savedId);
  void deleteMasterRecord();

  std::unique_ptr<SaveRequest> saveRequest_;
  QPointer<BarcodeEntry> barcodeEntry_;  // made when the first code comes
  bool lastSaveSucceeded_ = true;
};

// The master on pages. A form that brings no layout of its own gets one from the field descriptions.
class BASE_PACKAGE TfBaseEditMaster : public TfBaseEdit {
  Q_OBJECT
 public:
  explicit TfBaseEditMaster(QWidget* parent = nullptr);
  QTabWidget* pcMaster() const { return pcMaster_; }
  void buildLayout() override;
  void CDS_AfterScroll(TClientDataSet* dataSet) override;

 protected:
  void buildPages(int rowsPerColumn);  // unless the form filled pcMaster itself
  QTabWidget* pcMaster_;
};

// The master on pages, its lines in the grid dbgDetail over cdsDetail. Editing a line puts the master into edit state,
// so that saving, cancelling and the question before closing see one document.
class BASE_PACKAGE TfBaseEditMasterDetail : public TfBaseEditMaster {
  Q_OBJECT
 public:
  explicit TfBaseEditMasterDetail(QWidget* parent = nullptr);
  TClientDataSet* cdsDetail() const { return cdsDetail_; }
  TDBGridEx* dbgDetail() const { return dbgDetail_; }

  void buildLayout() override;
  void CDS_AfterScroll(TClientDataSet* dataSet) override;
  void acInsertRecordExecute() override;
  void acDeleteRecordExecute() override;
  void acToggleMasterDetailExecute();

 protected:
  void CDS_BeforeEdit(TClientDataSet* dataSet) override;
  void CDS_BeforeInsert(TClientDataSet* dataSet) override;
  TClientDataSet* cdsDetail_;
  TDBGridEx* dbgDetail_;
  QSplitter* splitter_ = nullptr;

 private:
  void requireEditableDocument();
  void deleteLines(TDBGrid& grid);
};

}  // namespace kalvor
