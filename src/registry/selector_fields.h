// The selectors of a form's fields: what a change of a field runs, what a chosen record puts into the record being
// edited. Part of the form; it needs no window.
#pragma once

#include <QPointer>
#include <memory>
#include <vector>

#include "registry/selector.h"

namespace kalvor {

class KALVOR_RULES SelectorFields {
 public:
  // owner: the form; it outlives this.
  explicit SelectorFields(QObject* owner);
  ~SelectorFields();  // the fields get their own handlers back
  SelectorFields(const SelectorFields&) = delete;
  SelectorFields& operator=(const SelectorFields&) = delete;

  // The field's selector; add makes it when there is none, unless the description is blank (null).
  TSelector* find(const TField* field) const;
  TSelector* add(TField* field, const QString& description);
  // From now on a change of the field by anyone runs its selector with the text as search. The handler that the field
  // had is called after it.
  void bindChanges(TField* field);
  // A further handler of the field's changes, before the field's own; it runs while changes are held, too.
  void addChangeHandler(TField* field, FieldEvent handler);

  void setDependant(TField* field, TSelector* selector);
  const TSelectorDependantFieldsArray& dependants() const { return dependants_; }

  // --- What happens to a dataset of the form ------------------------------------------------------------
  void dataSetOpened(TClientDataSet* dataSet);
  void dataSetClosing(TClientDataSet* dataSet);
  void dataSetScrolled(const TClientDataSet* dataSet);
  void fieldChanging(TField* field);  // from OnValidate: the field still holds what it held

  // --- Running ------------------------------------------------------------------------------------------
  // What the change of a bound field asks for. The user who leaves the lookup without a choice gets the previous value
  // back, and SilentAbort goes up.
  void changed(TField* field);
  // A lookup by button, key or default: from the control (or null) that opened it.
  int run(TSelector& selector, SelectorControl* control, const QString& filterText = {});
  // The metadata default that calls the field's selector: one record fills silently, else the user chooses.
  void runForDefault(TField* field);
  bool isSearching() const { return searching_ > 0; }
  void lookupClosed() { lookup_ = {}; }

  // Sets a lookup field as a person would who knows the value: the selector then fills what depends on it, with "=" in
  // place of LIKE. The value stays when no record is found or chosen.
  void setWithLookup(TField* field, const Variant& value, const QString& description);

  // Sets a field from a text as typed; a lookup field takes the one record that equals it and opens nothing. DataError
  // when the field or the lookup does not take it; the field may hold the text then.
  void setExactly(TField* field, const QString& text);

  // Puts the chosen values into the record for which the lookup was opened: all of them or, with what the field throws,
  // none. Selectors do not run meanwhile.
  void putChosen(const TSelectionList& selection);
  bool isPuttingChoice() const { return putting_ > 0; }

  // Changes are passed on to the fields' own handlers and run no selector while one lives.
  class Hold {
   public:
    explicit Hold(SelectorFields& fields) : fields_(fields) { ++fields_.held_; }
    ~Hold() { --fields_.held_; }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    SelectorFields& fields_;
  };

  std::function<bool()> defaultsInProgress;        // true: as if held, and nothing is reset either
  std::function<void(TField*)> choiceRefused;      // the user is to be brought back to the field
  std::function<void(TClientDataSet*)> choicePut;  // all values of a choice are in the record; selectors are quiet still

 private:
  struct Entry;
  struct ChangeHandler;
  struct LookupRecord {
    QPointer<TClientDataSet> dataSet;
    Bookmark bookmark = noBookmark;
  };

  struct ChosenValue {
    TField* field;
    Variant value;
    Variant before;
  };

  Entry* entryOf(const TField* field) const;
  Entry& needEntry(TField* field);
  void hook(Entry& entry);
  void fieldChanged(TField* field);
  void passOn(Entry& entry, TField* field);
  void search(Entry& entry, TField* field);
  void setNull(Entry& entry, TField* field);
  void refuse(Entry& entry, TField* field, const Variant& previous);
  bool quiet() const { return held_ > 0 || (defaultsInProgress && defaultsInProgress()); }
  void goToLookupRecord(TClientDataSet* dataSet);
  void putValues(const QList<ChosenValue>& values);

  QObject* owner_;
  std::vector<std::unique_ptr<Entry>> entries_;
  TSelectorDependantFieldsArray dependants_;
  LookupRecord lookup_;
  int held_ = 0;
  int searching_ = 0;
  int putting_ = 0;
};

}  // namespace kalvor
