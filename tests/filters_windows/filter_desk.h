// An owner that remembers what a filter editor gave it, a main window that remembers what it was told, a lookup form
// that answers at once.
#pragma once

#include "../filters/table_filter_fields.h"
#include "../registry_selectors/fake_form.h"
#include "scripted_ports.h"

namespace kalvor::testing {

class FilterOwner : public FakeForm {
 public:
  void SetPblFilter(const FilterArray& filter, const ParameterArray& params, bool merge) override
  {
    ++times;
    taken = filter;
    parameters = params;
    merged = merge;
  }
  void SetSecurityFilter(const FilterArray& filter) override
  {
    ++times;
    security = filter;
  }
  void SetActiveSelector(ISelectorOwnerIntf* target) override { active = target; }

  int times = 0;
  FilterArray taken, security;
  ParameterArray parameters;
  bool merged = true;
  ISelectorOwnerIntf* active = nullptr;
};

class ToldMainWindow : public IMainFormIntf {
 public:
  ToldMainWindow() { installMainForm(this); }
  ~ToldMainWindow() override { installMainForm(nullptr); }
  void FormClosed(const QString&) override {}
  void SetActionStates(const QStringList&) override {}
  void SetHasFilter(bool) override {}
  void SetWindowTitle(const QString& title, const QString& id) override { titles.insert(id, title); }
  void WindowClosed(const QString& id) override { closed.append(id); }

  QHash<QString, QString> titles;
  QStringList closed;
};

// Chooses these records in every lookup form that opens.
class ScriptedLookup {
 public:
  ScriptedLookup()
  {
    selectorServices().RequestForm = [this](int formId, ShowOption, const FilterArray& filter, const FilterArray&,
                                            TSelectionList& selection, const TDefaultValues&, QObject* owner) {
      opened = formId;
      filters = filter;
      TSelectionList chosen;
      for (const VariantArray& record : records) {
        TRecordLine line = selection.value(0);
        for (qsizetype i = 0; i < line.size(); ++i) {
          line[i].Value = record.value(i);
        }
        chosen.append(line);
      }
      return dynamic_cast<ISelectorOwnerIntf*>(owner)->ProcessSelectedRecords(chosen, so_SelectMulty) ? 1 : 2;
    };
  }
  ~ScriptedLookup() { selectorServices().RequestForm = {}; }

  QList<VariantArray> records;
  int opened = 0;
  FilterArray filters;
};

}  // namespace kalvor::testing
