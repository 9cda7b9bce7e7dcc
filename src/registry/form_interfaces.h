// How forms, dialogs, filter editors and the main window know each other. A party asks an object for one of
// these with dynamic_cast (or formInterface<>) and goes without it when the object does not offer it.
#pragma once

#include <QObject>
#include <QStringList>

#include "data/client_dataset.h"
#include "registry/form_types.h"

namespace kalvor {

class TSelector;

// A field whose value decides which item of a selector is in force.
struct TSelectorDependantField {
  TField* Field = nullptr;
  TSelector* Selector = nullptr;
};
using TSelectorDependantFieldsArray = QList<TSelectorDependantField>;

// What a form that was opened to choose or edit a record tells whoever opened it.
class KALVOR_RULES ISelectorOwnerIntf {
 public:
  virtual ~ISelectorOwnerIntf();
  // The opened form, and null when it is gone.
  virtual void SetSelectorForm(QObject* form) = 0;
  // The chosen records, one line a record; true when they were taken.
  virtual bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) = 0;
  // The form saved or deleted; recordId is the "Id" of the record, empty when it has none.
  virtual void SelectorFormSaved(QObject* form, const QString& recordId) = 0;
};

// What every business form offers.
class KALVOR_RULES IBaseIntf : public ISelectorOwnerIntf {
 public:
  ~IBaseIntf() override;

  // --- Opening; the registry calls them in this order --------------------------------------------------
  virtual void SetFormRights(int formId, bool defaultRight) = 0;
  virtual void SetFormOwner(QObject* owner) = 0;
  virtual void SetFormCaller(QObject* caller) = 0;
  virtual QObject* GetFormCaller() const = 0;
  // Opens the master and shows the form. callerFilter stays under every filter that the user sets; extraFilter
  // becomes the user's own. Selection is filled in place when the form is modal. Gives the modal result (1 chosen,
  // 2 not chosen), else 0. Raises what stands in the way of showing.
  virtual int DoShowForm(int formId, ShowOption options, const FilterArray& callerFilter,
                         const FilterArray& extraFilter, TSelectionList& selection, const TDefaultValues& defaults,
                         const ParameterArray& parameter) = 0;
  virtual bool CheckFormID(const QString& id) const = 0;

  // --- Data ---------------------------------------------------------------------------------------------
  virtual TClientDataSet* GetCdsMaster() const = 0;
  virtual ParameterArray GetSqlParams() const = 0;
  virtual void SetCdsValues(const TDefaultValues& values) = 0;
  virtual void SetPblFilter(const FilterArray& publicFilter, const ParameterArray& params, bool merge) = 0;
  virtual void SetSecurityFilter(const FilterArray& filter) = 0;
  // The dialog that takes the choice of a lookup started from it; null = the form itself.
  virtual void SetActiveSelector(ISelectorOwnerIntf* target) = 0;
  virtual int SetSelectorAction(TField* field) = 0;  // negative: do not run the field's selector
  virtual bool ifInCopyData() const = 0;
  virtual TSelectorDependantFieldsArray GetSelectorDependantFields() const;         // none
  virtual void SetDependantSelectorField(TField* field, TSelector* selector);  // keeps nothing
  virtual QString GetFieldDefaultValue(int dsIndex, int fieldIndex) const = 0;
  virtual Variant ParseDefaultValue(const QString& text, TField* field) = 0;

  // --- Navigation and verbs, as the main window's commands name them ------------------------------------
  virtual void FirstRecord() = 0;
  virtual void PrevRecord() = 0;
  virtual void NextRecord() = 0;
  virtual void LastRecord() = 0;
  virtual void DeleteRecord() = 0;
  virtual void ExportCDS() = 0;
  virtual void ImportCDS() = 0;
  virtual void InsertRecord() = 0;
  virtual void CopyRecord() = 0;
  virtual void EditRecord() = 0;
  virtual void CopyNew() = 0;
  virtual void FieldFilter() = 0;
  virtual void TableFilter() = 0;
  virtual void RemoveFilter() = 0;
  virtual void Find() = 0;
  virtual void Refresh() = 0;
  virtual void Print() = 0;
  virtual void Preview() = 0;
  virtual void PrintSelect() = 0;
  virtual void PrintTXT() = 0;
  virtual void Sort() = 0;
  virtual void CancelChanges() = 0;
  virtual void ReCalcDocument() = 0;
  virtual void SaveDocument() = 0;
  virtual void SelectAll() = 0;
  // Runs a named action ("acSave", "acGetDetails"); false when the form has none of that name or it is disabled.
  virtual bool execute(const QString& actionName) = 0;
};

// What the plain dialogs of the family offer.
class KALVOR_RULES IBaseCommonIntf {
 public:
  virtual ~IBaseCommonIntf();
  virtual void SetFormRights(int formId, bool defaultRight) = 0;
  virtual bool CheckFormID(const QString& id) const = 0;
  virtual int DoShowForm(int formId, ShowOption options) = 0;
  virtual int DoShowForm(int formId, ShowOption options, const TDialogParams& params) = 0;
};

// The filter editors; the three kinds of selector owner differ in nothing but what they are.
class KALVOR_RULES ITableFilterIntf : public ISelectorOwnerIntf {
 public:
  ~ITableFilterIntf() override;
};

class KALVOR_RULES IFieldFilterIntf : public ISelectorOwnerIntf {
 public:
  ~IFieldFilterIntf() override;
};

// The main window, in this order.
class KALVOR_RULES IMainFormIntf {
 public:
  virtual ~IMainFormIntf();
  virtual void FormClosed(const QString& notice) = 0;  // always an empty text
  // "acGlobalSave=-1", "acGlobalCancel=0", ... in a fixed order.
  virtual void SetActionStates(const QStringList& states) = 0;
  virtual void SetHasFilter(bool hasFilter) = 0;
  virtual void SetWindowTitle(const QString& title, const QString& uniqueId) = 0;  // for the list of open forms
  virtual void WindowClosed(const QString& uniqueId) = 0;
};

// The installed main window; null (as at first) means that the notices are skipped. Not owned.
KALVOR_RULES IMainFormIntf* mainForm();
KALVOR_RULES void installMainForm(IMainFormIntf* form);

}  // namespace kalvor
