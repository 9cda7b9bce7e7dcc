// The lookup of one field: which form it opens for the record being edited, and what it copies from the record chosen
// there.
#pragma once

#include <optional>

#include "registry/form_interfaces.h"
#include "registry/lookup_matches.h"
#include "registry/selector_control.h"
#include "registry/selector_items.h"

namespace kalvor {

// Owner is the form (IBaseIntf), filter editor or dialog that takes what is chosen; it and the dataset outlive the
// selector, which is owned by its control or, when made for a field, by the form.
class KALVOR_RULES TSelector {
 public:
  // TELException with "TSelectorButton.Create".
  TSelector(QObject* owner, SelectorControl* control, const QString& description, TClientDataSet* dataSet);
  TSelector(QObject* owner, TField* field, const QString& description, TClientDataSet* dataSet);
  TSelector(const TSelector&) = delete;
  TSelector& operator=(const TSelector&) = delete;
  ~TSelector();

  QString Description;
  QString FieldName;                  // of the bound field
  TSelectorItems Items;
  SelectorControl* Control = nullptr; // null: the selector was made for a field
  QObject* Owner;
  int Index = -1;                     // of the item in force, -1 = none
  TClientDataSet* DataSet;
  bool ReadOnly = false;
  TField* Field = nullptr;            // bound field

  // Opens the lookup form of the item whose condition the record meets; while the owner copies data the field is filled
  // instead. sender: the field whose change started it, null for a button. A filterText (stored filter string) replaces
  // the item's filter. Gives a SelectorResult; SelectorOpened also when nothing was to be done.
  int Execute(TField* sender = nullptr, const QString& filterText = {});
  // Fills the target fields when exactly one record meets the item's filters. exactMatch: a LIKE in the first row of
  // the filter asks for equality. True: the owner took the record.
  bool Fill(TField* sender, bool exactMatch);
  // For a control without a dataset: what is chosen goes to the owner.
  int FillControl(SelectorControl* control);

  enum class SearchResult : quint8 {
    NotRun,    // no item is meant for the record, or the owner wants no lookup: the text stays as it is
    Filled,    // a record was taken
    NotChosen  // none was found or chosen
  };
  // What a text typed into the bound field means: the one record that equals it or else the only one that meets the
  // filter is taken silently, otherwise the user chooses among those that meet it. An empty text lets the user choose.
  SearchResult Search(TField* sender, const QString& text);
  // The one record that equals the text is taken, nothing is opened. NotChosen: there is none, or there are several.
  SearchResult FillExactly(TField* sender, const QString& text);
  // For a field whose default it is: the only record that meets the filters is taken, otherwise the user chooses.
  SearchResult FillOrChoose(TField* sender);

  // What a text being typed into the control asks the lookup form for. Nothing when no item is meant for the record, the
  // owner wants no lookup, or the field cannot be written.
  std::optional<LookupQuestion> MatchQuestion(SelectorControl* control, const QString& text);
  // Puts one of the answered records into the record being edited, as if it had been chosen in the lookup form. False:
  // another item is in force by now, or the owner did not take it.
  bool TakeMatch(const LookupQuestion& question, const LookupMatches& matches, int row);

  bool CheckCondition(const FilterArray& condition, TClientDataSet* dataSet, QObject* owner) const;
  int GetIndex() const;               // the first item whose condition holds, -1 for none
  QList<TField*> GetDependantFields() const;  // of the dataset, named by <#Field( in conditions, each once
  void SetDependantFields();          // tells the owner of them, and takes the item in force
  void SetDependantSelectorField(TField* field);
  // One of them changed: when another item comes into force, the targets of both go back to their defaults.
  void ModifySelectorFieldsIfChanged(TField* field);
  QString GetFieldsToClear(int itemA, int itemB) const;  // "A,B,": targets of both, each once

  bool GetReadOnlyByControl() const;
  TField* GetSelectorFieldByControl() const;
  TField* GetSelectorFieldByControlOrName() const;

 private:
  IBaseIntf* form() const;
  void takeControl();
  bool startRun();
  FilterArray itemFilter(const QString& text) const;
  SearchResult searchFor(TField* sender, const QString& text, bool exactFirst, bool showAlways);
  bool fillItem(const TSelectorItem& item, bool exactMatch);
  int openItem(const TSelectorItem& item, TField* sender, const QString& filterText, bool showAlways);
  void resetField(TField* field, IBaseIntf* baseForm);
};

}  // namespace kalvor
