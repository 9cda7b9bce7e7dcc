// A form without a window: one dataset or more, parameters, defaults, and what selectors hand to it.
#pragma once

#include "records.h"
#include "registry/form_interfaces.h"
#include "registry/selector_fields.h"
#include "registry/selector_lookup.h"

namespace kalvor::testing {

class FakeForm : public QObject, public IBaseIntf {
 public:
  TClientDataSet* addDataSet(const QString& name, const QList<FieldDef>& fields)
  {
    auto* dataSet = new TClientDataSet(this);
    dataSet->setObjectName(name);
    dataSet->CreateDataSet(fields);
    return dataSet;
  }

  ParameterArray parameters;
  QStringList defaults;              // by field index
  bool copying = false;
  int selectorAction = 1;
  QList<TSelectionList> handed;
  ShowOption handedOptions;
  SelectorFields fields{this};

  void SetSelectorForm(QObject*) override {}
  bool ProcessSelectedRecords(const TSelectionList& selection, ShowOption options) override
  {
    handed.append(selection);
    handedOptions = options;
    fields.putChosen(selection);
    return true;
  }
  void SelectorFormSaved(QObject*, const QString&) override {}
  TClientDataSet* GetCdsMaster() const override { return findChild<TClientDataSet*>(QStringLiteral("cdsMaster")); }
  ParameterArray GetSqlParams() const override { return parameters; }
  int SetSelectorAction(TField*) override { return selectorAction; }
  bool ifInCopyData() const override { return copying; }
  QString GetFieldDefaultValue(int, int fieldIndex) const override { return defaults.value(fieldIndex); }
  Variant ParseDefaultValue(const QString& text, TField* field) override
  {
    field->SetAsString(text);
    return field->Value();
  }
  TSelectorDependantFieldsArray GetSelectorDependantFields() const override { return fields.dependants(); }
  void SetDependantSelectorField(TField* field, TSelector* selector) override { fields.setDependant(field, selector); }

  void SetFormRights(int, bool) override {}
  void SetFormOwner(QObject*) override {}
  void SetFormCaller(QObject*) override {}
  QObject* GetFormCaller() const override { return nullptr; }
  int DoShowForm(int, ShowOption, const FilterArray&, const FilterArray&, TSelectionList&, const TDefaultValues&,
                 const ParameterArray&) override
  {
    return 0;
  }
  bool CheckFormID(const QString&) const override { return false; }
  void SetCdsValues(const TDefaultValues&) override {}
  void SetPblFilter(const FilterArray&, const ParameterArray&, bool) override {}
  void SetSecurityFilter(const FilterArray&) override {}
  void SetActiveSelector(ISelectorOwnerIntf*) override {}
  void FirstRecord() override {}
  void PrevRecord() override {}
  void NextRecord() override {}
  void LastRecord() override {}
  void DeleteRecord() override {}
  void ExportCDS() override {}
  void ImportCDS() override {}
  void InsertRecord() override {}
  void CopyRecord() override {}
  void EditRecord() override {}
  void CopyNew() override {}
  void FieldFilter() override {}
  void TableFilter() override {}
  void RemoveFilter() override {}
  void Find() override {}
  void Refresh() override {}
  void Print() override {}
  void Preview() override {}
  void PrintSelect() override {}
  void PrintTXT() override {}
  void Sort() override {}
  void CancelChanges() override {}
  void ReCalcDocument() override {}
  void SaveDocument() override {}
  void SelectAll() override {}
  bool execute(const QString&) override { return false; }
};

class FakeControl : public SelectorControl {
 public:
  explicit FakeControl(QString text = {}, TField* field = nullptr, bool readOnly = false)
    : text_(std::move(text)), field_(field), readOnly_(readOnly)
  {
  }
  QString Text() const override { return text_; }
  TField* Field() const override { return field_; }
  bool ReadOnly() const override { return readOnly_; }

 private:
  QString text_;
  TField* field_;
  bool readOnly_;
};

// A register of records behind the lookups, and a person in front of the lookup form.
class FakeServices {
 public:
  FakeServices()
  {
    selectorServices() = {
        [this](const QString& formId, int) { return registered.contains(formId) ? &description : nullptr; },
        [this](int, const TFormData&, const QString& columns, const FilterArray& filter, Variant& value) {
          askedColumns.append(columns);
          askedFilters.append(filter);
          return answer ? answer(filter, value) : 0;
        },
        [this](int formId, ShowOption options, const FilterArray& filter, const FilterArray& publicFilter,
               TSelectionList& selection, const TDefaultValues&, QObject* owner) {
          openedForms.append(formId);
          openedOptions = options;
          openedFilter = filter;
          openedPublicFilter = publicFilter;
          return choose ? choose(selection, owner) : 0;
        }};
  }
  ~FakeServices() { selectorServices() = before_; }

  QStringList registered{QStringLiteral("150"), QStringLiteral("140")};
  TFormData description;
  std::function<int(const FilterArray&, Variant&)> answer;
  std::function<int(TSelectionList&, QObject*)> choose;
  QStringList askedColumns;
  QList<FilterArray> askedFilters;
  QList<int> openedForms;
  ShowOption openedOptions;
  FilterArray openedFilter, openedPublicFilter;

 private:
  SelectorServices before_ = selectorServices();
};

}  // namespace kalvor::testing
