// Running a lookup: asking the server for the one record that meets the filters, or opening the lookup form.
#pragma once

#include <functional>

#include "data/client_dataset.h"
#include "registry/form_types.h"

namespace kalvor {

// What a lookup needs of the session and of the windows.
struct SelectorServices {
  // The description of a form by its identifier in decimal; null when it is not registered (the user was told).
  std::function<const TFormData*(const QString& formId, int dsIndex)> GetFromDataObject;
  // The records of a form's query that meet the filter: gives their number and the first one's values of the columns
  // (comma-separated), a value for one column, an array for several.
  std::function<int(int formId, const TFormData& description, const QString& columns, const FilterArray& filter,
                    Variant& value)>
      RequestValue;
  // As RequestForm; without windows nothing opens and 0 is the answer.
  std::function<int(int formId, ShowOption options, const FilterArray& callerFilter, const FilterArray& publicFilter,
                    TSelectionList& selection, const TDefaultValues& defaults, QObject* owner)>
      RequestForm;
};
// At first: the session's server connection; the windows bring RequestForm. Tests put their own in.
KALVOR_RULES SelectorServices& selectorServices();

// Results of a lookup; a modal lookup form answers with the same numbers.
enum SelectorResult : int { SelectorOpened = 0, SelectorChosen = 1, SelectorNotChosen = 2 };

// In place of a key field: the selector is not bound to one.
inline constexpr QLatin1String selectorNoField("<#NoField#>");

// The field sets that a lookup fills, one a target field, without values. The key flag marks the target named
// keyField.
KALVOR_RULES TRecordLine selectorFieldSets(const QString& sourceFields, const QString& targetFields,
                                           TClientDataSet* dataSet, const QString& keyField);

// Opens the lookup form, unless showAlways is off and exactly one record meets the filters: that one goes to the owner
// at once. flag is true afterwards. notFromField: nobody waits for the choice, so the form may stay open beside the
// owner; a lookup that the change of a field started is modal. TELException with "GetSelector".
KALVOR_RULES int GetSelector(int formId, const QString& sourceFields, const QString& targetFields,
                             TClientDataSet* dataSet, const FilterArray& filter, const FilterArray& publicFilter,
                             bool showAlways, bool& flag, bool notFromField, ShowOption options,
                             const TDefaultValues& defaults, QObject* owner, const QString& keyField);

// Hands the record to the owner when exactly one meets the filters; nothing changes otherwise. flag is true afterwards.
// True: the owner took it. TELException with "KalvorUtils.FillSelectorFields".
KALVOR_RULES bool FillSelectorFields(int formId, const QString& sourceFields, const QString& targetFields,
                                     TClientDataSet* dataSet, const FilterArray& filter,
                                     const FilterArray& publicFilter, bool& flag, QObject* owner);

// Hands one record of the lookup form to the owner: its values by column names. True: the owner took it. TELException
// with "KalvorUtils.FillSelectorFields".
KALVOR_RULES bool TakeSelectorRecord(const QString& sourceFields, const QString& targetFields, TClientDataSet* dataSet,
                                     const QStringList& columns, const VariantArray& values, QObject* owner,
                                     const QString& keyField);

// As GetSelector for a control without a dataset: the owner puts what was chosen into its control. TELException with
// "GetControlSelector".
KALVOR_RULES int GetControlSelector(int formId, const QString& sourceFields, const FilterArray& filter,
                                    const FilterArray& publicFilter, bool showAlways, bool& flag, ShowOption options,
                                    const TDefaultValues& defaults, QObject* owner);

}  // namespace kalvor
