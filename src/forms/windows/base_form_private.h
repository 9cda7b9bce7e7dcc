// State of a form, for the files that make up its body.
#pragma once

#include <QHash>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <vector>

#include "forms/form_rights.h"
#include "forms/windows/base_form.h"
#include "forms/windows/cds_options.h"
#include "forms/windows/form_actions.h"

namespace kalvor {

class IncrementalSearch;

// Tells the form what happens to its master, beside the single-slot events.
class MasterLink : public DataLink {
 public:
  explicit MasterLink(TfBase* form) : form_(form) {}
  void dataEvent(DataEvent event, TField* field) override;

 private:
  TfBase* form_;
};

struct TfBase::Private {
  explicit Private(TfBase* form);

  enum class Stage { New, Created, Opened, Shown, Closing, Closed };
  Stage stage = Stage::New;
  int formId = 0;
  int rightsFormId = 0;
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
  int parsingDefaults = 0;                    // nested; field change handlers are quiet meanwhile
  QPointer<QObject> owner, caller;
  ISelectorOwnerIntf* activeSelector = nullptr;
  std::vector<QPointer<QWidget>> openedForms; // forms this one opened and closes with itself
  QPointer<QObject> selectorForm;
  int modalResult = 0;
  bool modal = false;
  FormActions actions;
  MasterLink masterLink;
  QMenu* gridMenu = nullptr;
  IncrementalSearch* search = nullptr;
  QTimer actionStateTimer;                    // joins a burst of record changes into one report
};

}  // namespace kalvor
