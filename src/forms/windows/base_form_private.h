// State of a form, for the files that make up its body.
#pragma once

#include <QMenu>
#include <QPointer>
#include <vector>

#include "forms/form_rights.h"
#include "registry/selector_fields.h"
#include "forms/windows/base_form.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_actions.h"

namespace kalvor {

class TfSearch;
class TfTableFilter;

struct TfBase::Private {
  explicit Private(TfBase* form);

  enum class Stage { New, Created, Opened, Shown, Closing, Closed };
  Stage stage = Stage::New;
  int formId = 0;
  int rightsFormId = 0;
  int queryFormId = 0;                        // whose query the master shows; 0 = the form's own
  ShowOption options;
  QString uniqueId;
  std::vector<std::unique_ptr<TCDSOptions>> dataSets;  // entries keep their place
  TFormRights rights;
  FilterArray formFilter, callerFilter;
  bool hasFilter = false;
  ParameterArray sqlParameters;
  QString sortOrder;
  TSelectionList ownSelection;
  TSelectionList* sharedSelection = nullptr;  // the caller's, while it waits for a modal form
  TDefaultValues defaultValues;
  bool canSave = true;
  bool tableFilterShown = false;
  bool importing = false;
  int parsingDefaults = 0;                    // nested; field change handlers are quiet meanwhile
  QPointer<QObject> owner, caller;
  ISelectorOwnerIntf* activeSelector = nullptr;
  std::vector<QPointer<QWidget>> openedForms; // forms this one opened and closes with itself
  QPointer<QObject> selectorForm;
  QPointer<QWidget> lookupAsker;              // gets the focus back from a lookup that stays open beside this form
  int modalResult = 0;
  bool modal = false;
  FormActions actions;
  SelectorFields selectors;
  QHash<const TClientDataSet*, QStringList> seriesFields;
  QMenu* gridMenu = nullptr;
  QString caption, captionFields;             // of the form's description
  FilterArray askedFilter;                    // what the table filter editor starts with while the form opens
  QPointer<TfTableFilter> tableFilter;        // while the editor is open
  QPointer<TfSearch> search;
  bool openEmpty = false;                     // the default filter waits for the user's part of it
  bool laidOut = false;
  bool sizeFromSettings = false;
  bool hosted = false;                        // a child window of the main window
};

}  // namespace kalvor
