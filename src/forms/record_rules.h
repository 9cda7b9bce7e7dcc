// Rules of a record that is being edited: errors in the user's words, locked fields, selector and series fields.
#pragma once

#include <functional>
#include <optional>

#include "data/client_dataset.h"

namespace kalvor {

// The message for the user when the text is a dataset's required-field error, nothing for any other.
KALVOR_RULES std::optional<QString> requiredFieldError(const QString& errorText);
// Body of the edit-error and post-error handlers: shows that message and aborts silently; others pass on.
KALVOR_RULES void translateRecordError(const DataError& error, ErrorAction& action);

// "Полето %s е заключено." with the field's caption.
KALVOR_RULES QString lockedFieldMessage(const TField* field);

// What a change of a selector field asks for.
enum class SelectorFieldChange : quint8 {
  RunWithoutText,  // empty, but the field must have a value: the user chooses
  SetNull,         // empty and free to be
  RunWithText      // the trimmed text is what to look for
};
KALVOR_RULES SelectorFieldChange selectorFieldChange(const QString& trimmedText, bool required);

// The two calls by which a series says whether it allows manual numbers.
struct SeriesCalls {
  std::function<int(int formId, int dsIndex)> GetQueryID;
  // Gives the count of rows found and the value.
  std::function<int(int query, const QString& source, const QString& columns, const FilterArray& filter, Variant& value,
                    bool allRows)>
      RequestValue;
};
// Change handler of a number field of a series: when the record's series gives automatic numbers only, the field
// gets back its previous value and the user is told. Guards itself against its own change.
KALVOR_RULES void SerieFieldOnChange(TField* field, bool defaultsInProgress, const SeriesCalls& server);

}  // namespace kalvor
