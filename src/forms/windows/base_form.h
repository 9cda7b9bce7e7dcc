// The root of every business form: a controller over one or more client datasets whose fields, captions, kinds,
// filters and defaults come from the server by form identifier.
//
// A concrete form makes its datasets (objectName "cdsMaster", "cdsDetail", ...) as children in the order that gives
// their dataset index, and its controls bound to them; the registry then calls FormCreate, SetFormRights, DoShowForm.
#pragma once

#include <QAction>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "forms/grid_order.h"
#include "import/import_line.h"
#include "registry/form_interfaces.h"

class QAbstractButton;
class QMenu;

namespace kalvor {

struct TCDSOptions;
struct TFormatSettings;
class TImportFilter;
struct TFormRights;
class TDBGrid;
class SelectorControl;
class ImportRun;
class TfExportOptions;

// What acCopyNew copies of one dataset. An empty field list means the fields that the metadata lets be copied.
struct TCopyInfo {
  TClientDataSet* DataSet = nullptr;
  bool AllRecords = false;
  QString FieldList;  // ";"-separated
};


// What the user may not do, or not now. Shown, not logged.
class BASE_PACKAGE FormRefusal : public DataError {
 public:
  explicit FormRefusal(const QString& message);
  ~FormRefusal() override;
};

class BASE_PACKAGE TfBase : public QWidget, public IBaseIntf {
  Q_OBJECT
 public:
  explicit TfBase(QWidget* parent = nullptr);
  ~TfBase() override;

  // --- State --------------------------------------------------------------------------------------------
  int formId() const;
  ShowOption showOptions() const;
  const QString& uniqueId() const;        // of this window, towards the main window
  int dataSetCount() const;
  TCDSOptions* GetCdsOpts(const TClientDataSet* dataSet) const;  // null: not one of the form's
  int GetCdsOptPos(const TClientDataSet* dataSet) const;         // -1: not one of the form's
  TCDSOptions* GetCdsOptsByFld(const TField* field) const;
  int GetCdsOptsPosByFld(const TField* field) const;
  TCDSOptions& cdsOptions(int dsIndex) const;
  const TFormRights& rights() const;
  const FilterArray& formFilter() const;    // the user's; no rows = none
  const FilterArray& callerFilter() const;  // with the security filter once shown
  const FilterArray& securityFilter() const;
  bool hasFilter() const;
  const QString& sortOrder() const;
  void setSortOrder(const QString& order);  // for the next request
  const TDefaultValues& defaultValues() const;
  TSelectionList& selection();
  bool inSelectionMode() const;             // any of the five
  bool canSave() const;
  void setCanSave(bool on);
  bool tableFilterShown() const;
  // Column of the field's description row; null when the field is none of the form's or has no row.
  Variant GetFieldDescription(const TField* field, int column) const;
  Variant fieldDescriptionRow(const TField* field) const;  // the whole row

  // --- Opening and closing ------------------------------------------------------------------------------
  void FormCreate();                        // once, when all datasets are there; DoShowForm does it otherwise
  void SetFormOwner(QObject* owner) override;
  void SetFormCaller(QObject* caller) override;
  QObject* formOwner() const;
  QObject* GetFormCaller() const override;
  bool CheckFormID(const QString& id) const override;
  // A modal form closes with this result; any other just closes.
  void closeWith(int modalResult);
  int modalResult() const;

  // --- Data ---------------------------------------------------------------------------------------------
  TClientDataSet* GetCdsMaster() const override;
  ParameterArray GetSqlParams() const override;
  // Readies a dataset's provider and stores the field descriptions it answers; false = the server refused.
  bool RequestDataSet(int dsIndex, const FilterArray& filter, const QString& order);
  // The request filter: security, caller and form filter.
  FilterArray requestFilter() const;
  bool CheckState() const;                  // the master is being written
  bool hasChanges() const;                  // unapplied changes in any dataset
  bool QueryToSaveBeforeToDo();
  void SetCdsValues(const TDefaultValues& values) override;
  QString GetFieldDefaultValue(int dsIndex, int fieldIndex) const override;
  Variant ParseDefaultValue(const QString& text, TField* field) override;
  void FieldOnChange(TField* field);
  TSelectorDependantFieldsArray GetSelectorDependantFields() const override;
  void SetDependantSelectorField(TField* field, TSelector* selector) override;
  // The field's selector, made from its description when there is none yet; null when the field has no description.
  TSelector* selectorOf(TField* field);
  void SetFieldOnChange(TField* field);       // its changes run its selector
  void SetSerieFieldOnChange(TField* field);  // it is numbered by the record's series
  QStringList seriesFields(const TClientDataSet* dataSet) const;
  // Runs a selector for a control and brings the focus back to the widget that asked for it.
  int runSelector(TSelector& selector, SelectorControl* control, QWidget* asking, const QString& filterText = {});
  void FieldOnValidate(TField* field);
  void SetActiveSelector(ISelectorOwnerIntf* target) override;
  void SetSelectorForm(QObject* form) override;
  void SelectorFormSaved(QObject* form, const QString& recordId) override;
  bool ifInCopyData() const override;

  void FirstRecord() override;
  void PrevRecord() override;
  void NextRecord() override;
  void LastRecord() override;
  void SelectAll() override;

  // --- Named actions ------------------------------------------------------------------------------------
  QAction* action(const QString& name) const;  // null when there is none
  bool execute(const QString& actionName) override;
  // Binds what an action does; called by constructors. context stands in the error log: "TfBase.acRefreshExecute".
  void setActionHandler(const QString& name, std::function<void()> handler, const QString& context = {});
  // A further named action of a descendant.
  QAction* addNamedAction(const QString& name, const QString& caption, const QKeySequence& shortcut,
                          std::function<void()> handler);
  QMenu* gridMenu() const;
  // Puts a message under the form's name into the log and before the user; for bodies that may fail. False: failed.
  bool runGuarded(const QString& context, const std::function<void()>& body);

  // --- Virtual operations, in slot order ----------------------------------------------------------------
  virtual void LoadColorOptionsFromXML();
  virtual void AttachDynamicEvents(TClientDataSet* dataSet);
  virtual void AttachDynamicAggregateEvents(TClientDataSet* dataSet);
  virtual void SetFormCaption(const QString& caption, const QString& fields);
  virtual void UpdateActionState();
  virtual void CustomUpdateActionState();
  virtual void GetFormSettings();
  virtual void SaveFormSetings();
  virtual void GetDocumentInfo();
  virtual void FindDialogExecute(const QString& text);
  virtual void BuildRaveFilter();
  virtual void GenerateID(TClientDataSet* dataSet);
  virtual void CDS_ParseDefaultValues(TClientDataSet* dataSet);
  virtual void ProcessCopyData();
  virtual bool CheckDataModification(bool edit, bool remove, bool insert);
  virtual void GetPrintDocument();
  // Imports a data file into this form, which becomes the form of that identifier; the master opens empty unless
  // so_DoNotShow is among the options. keyField and keyValue name the document of a file that holds lines only.
  // Unattended: nothing is shown and nothing asked. False: the run broke off at an error, whose text is in error; what
  // was saved before it stays saved.
  virtual bool ImportData(int formId, const TImportFilter& filter, const QString& fileName, const QString& keyField,
                          const QString& keyValue, QString& error, ShowOption options, bool unattended);
  // Readies the master for one record by the import action (IMPORT_ACTION): -1 failed (error says why), 0 go on, 1 the
  // record is passed over.
  int PrepareImportCDS(int importAction, const TImportLine& line, const TFormatSettings& settings, QString& error);
  bool isImporting() const;
  virtual void DoSaveGridView(TDBGrid* grid);
  virtual void DoLoadGridView(TDBGrid* grid);
  virtual bool isLockedField(TField* field);
  virtual void ProcessMarkedRecords(const TSelectionList& selection, ShowOption options);
  virtual void DoRecalcDocument();
  virtual void ApplyDataModificationColors();
  virtual void ApplyReadOnlyColors();
  void DeleteRecord() override;
  void ExportCDS() override;
  void ImportCDS() override;
  void InsertRecord() override;
  void CopyRecord() override;
  void EditRecord() override;
  void CopyNew() override;
  void FieldFilter() override;
  void TableFilter() override;
  void RemoveFilter() override;
  void Find() override;
  void Refresh() override;
  void Print() override;
  void Preview() override;
  void PrintSelect() override;
  void PrintTXT() override;
  void Sort() override;
  void CancelChanges() override;
  void ReCalcDocument() override;
  void SaveDocument() override;
  virtual void CDS_AfterOpen(TClientDataSet* dataSet);
  virtual void CDS_AfterClose(TClientDataSet* dataSet);
  virtual void CDS_AfterScroll(TClientDataSet* dataSet);
  virtual void CDS_BeforeClose(TClientDataSet* dataSet);
  int DoShowForm(int formId, ShowOption options, const FilterArray& callerFilter, const FilterArray& extraFilter,
                 TSelectionList& selection, const TDefaultValues& defaults, const ParameterArray& parameter) override;
  virtual void InitGridColumns();
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override;
  virtual void SetCopyInfo(QList<TCopyInfo>& list);
  void SetFormRights(int formId, bool defaultRight) override;
  void SetPblFilter(const FilterArray& publicFilter, const ParameterArray& params, bool merge) override;
  void SetSecurityFilter(const FilterArray& filter) override;
  int SetSelectorAction(TField* field) override;
  virtual void DBG_ColEnter(TDBGrid* grid, TField* field);
  // Opens the menu that is the button's child, its top-left corner at the middle of the button's right edge. A button
  // without one does nothing. btnCard, btnDocument and btnLine of every form run it when they are clicked.
  void PopUpButtonClick(QAbstractButton* button);
  virtual QString SpellNumber(bool flag);

  // --- Bodies that descendants extend -------------------------------------------------------------------
  virtual void FormShow();                  // control wiring, then the opening verb
  virtual bool FormCloseQuery();            // false keeps the form open
  virtual void dsMasterStateChange(TClientDataSet* master);
  virtual void buildLayout();               // before the first show, with the fields known; may do nothing
  virtual void acInsertRecordExecute();
  virtual void acCopyRecordExecute();
  virtual void acEditRecordExecute();
  virtual void acDeleteRecordExecute();
  virtual void acSaveExecute();
  virtual void acCancelExecute();
  virtual void acRefreshExecute();
  virtual void acGetDetailsExecute();
  virtual void acSelectExecute();
  virtual void acImportExecute();
  void SetEditControlsReadOnly();
  void SetPageControlCaptions();
  void reopenMaster();                      // after a new request: closes, forgets the metadata, opens
  bool isFillingDefaults() const;           // a new record takes its default values
  bool isPuttingChoice() const;             // a lookup's choice goes into the record, value by value

 signals:
  void formClosed();

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  // The rights guards: raise the refusal with the form's identifier.
  void requireReadRight();
  void requireEditRight();
  void requireInsertRight();
  void requireDeleteRight();
  void tellOwnerSaved(const QString& recordId);
  void cancelAllUpdates();
  // False: details have unsaved changes and the user wants to keep them.
  bool mayLeaveRecord();
  void focusFirstControl();
  void acRemoveFilterExecute();
  // A form that was opened on no record stays with this one.
  void becomeCardOf(const FilterArray& record);
  // A form that this one opened: it closes with this one.
  void adoptOpenedForm(QWidget* form);
  // The datasets' events; each ends with the handler that the form displaced.
  virtual void CDS_OnNewRecord(TClientDataSet* dataSet);
  // By which filter name a detail dataset is the master record's: its base table and ".Master_ID".
  virtual QString detailKeyField(int dsIndex) const;
  // A lookup's choice is in the record, all its values; meanwhile isPuttingChoice() was true.
  virtual void choicePut(TClientDataSet* dataSet);
  // An import is about to put these lines under the master record; what their rules will ask can be asked at once.
  virtual void linesComing(const TImportSet& lines, const TFormatSettings& settings);
  // An import has put a document with all its lines into the datasets, and is about to save it: what hangs on the lines
  // together is brought up to date once. Meanwhile isImporting() is true.
  virtual void documentPut();
  virtual void CDS_OnStateChange(TClientDataSet* dataSet);
  virtual void CDS_BeforeEdit(TClientDataSet* dataSet);
  virtual void CDS_BeforeInsert(TClientDataSet* dataSet);
  virtual void CDS_OnPostError(TClientDataSet* dataSet, const DataError& error, ErrorAction& action);
  virtual void FormActivate();
  virtual void FormDeactivate();
  virtual bool handleEnter(QKeyEvent* event);  // before the focused control; true = used up
  virtual void gridDoubleClicked(TDBGrid* grid);
  struct Private;
  std::unique_ptr<Private> d;

 private:
  friend class ControlWiring;
  friend class ImportRun;
  friend int RequestForm(int, ShowOption, const FilterArray&, const FilterArray&, const ParameterArray&,
                         TSelectionList&, const TDefaultValues&, QObject*, QObject*, const TDialogParams*);
  void bindActions();
  void bindGridActions();
  void acColumnsPropsExecute();
  void hookFields(TCDSOptions& entry);
  void hookDataSet(TClientDataSet* dataSet);
  void openWithDescription();
  void openMaster();
  void takeDefaultFilter(const QString& text);
  int SetFormProperties();
  void prepareLayout();
  int showModally();
  void showAsChild();
  void moveMaster(void (TClientDataSet::*move)());
  bool closeOpenedForms();
  void FormClose();
  void FormDestroy();
  void refreshCaption();
  void refuseStateChange(DataSetState state);
  void focusField(TField* field);
  void bindSelectors();
  void makeFieldSelectors(TClientDataSet* dataSet);
  void backToField(TClientDataSet* dataSet, const QString& fieldName);
  void backFromLookup();
  void acFieldFilterExecute();
  void acTableFilterExecute();
  void acSortExecute();
  void openTableFilter(const FilterArray& startFilter);
  void askForFilter();
  void showWindow();
  void acCopyNewExecute();
  void acExportExecute();
  void exportAs(const TfExportOptions& choice, TClientDataSet* master, TClientDataSet* detail);
  void titleClicked(TDBGrid* grid, TField* field, TitleClick click);
  void pasteRows(TDBGrid* grid);
};

}  // namespace kalvor
