// What a user may do on a form, and what follows for a record that starts to be edited.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

struct TFormRights {
  bool ReadRight = false;
  bool EditRight = false;
  bool InsertRight = false;
  bool DeleteRight = false;
  bool FinishRight = false;
  bool PrintRight = false;
  bool ExportRight = false;
  bool EditPropsRight = false;
  bool AnnulRight = false;
  FilterArray SecurityFilter;  // no rows = none

  static KALVOR_RULES TFormRights all(bool allowed);
};

// True for the administrator's user code, in any letter case.
KALVOR_RULES bool isAdministrator(const QString& userCode);

// The user's rights on a form: everything for the administrator; else the form's row of the rights dataset (a
// right is given exactly by the integer 1); without an open dataset or a row, every right as defaultRight says.
// A row whose security filter cannot be read gives no right at all, and is logged ("SetForm_IDRights").
KALVOR_RULES TFormRights loadFormRights(int formId, bool defaultRight, const QString& userCode,
                                        TClientDataSet* rightsDataSet);

// What a form does when its master enters a state.
enum class StateChangeRefusal : quint8 {
  None,
  CancelAllChanges,  // no right to edit: the changes of every dataset go, _err_EditNotAllowed
  CancelEdit,        // the form allows no edit now: the edit goes, _err_EditNotAllowed
  CancelInsert       // the same for a new record, _err_InsertNotAllowed
};
// mayEdit and mayInsert are the form's own answers (CheckDataModification).
KALVOR_RULES StateChangeRefusal checkStateChange(DataSetState state, const TFormRights& rights, bool mayEdit,
                                                 bool mayInsert);

}  // namespace kalvor
