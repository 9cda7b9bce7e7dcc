// What a new record starts with: the defaults of the field descriptions, then those of the form's caller.
#pragma once

#include <functional>
#include <optional>

#include "data/client_dataset.h"
#include "registry/form_types.h"
#include "session/local_data.h"

namespace kalvor {

// What macros draw on. The clock and the identifiers come from the installed ports.
struct DefaultValueContext {
  const TLocalData* session = nullptr;        // required
  TClientDataSet* master = nullptr;           // null: master macros change nothing
  std::function<void(TField*)> callSelector;  // runs the field's selector; empty: that macro changes nothing
};

// The value that a macro gives the field: the text must equal it exactly, case included. Nothing for a text that
// is no macro, and for one whose referent is missing. Master-field and selector macros are left to
// ParseDefaultValue.
KALVOR_RULES std::optional<Variant> defaultMacroValue(const QString& text, const TField* field,
                                                      const DefaultValueContext& context);

// Applies one metadata default and gives the field's value afterwards. A blank text changes nothing and gives
// null. A text that is no macro is converted by the field (DataError when it does not convert).
KALVOR_RULES Variant ParseDefaultValue(const QString& text, TField* field, const DefaultValueContext& context);

// Both sources, on the current record of a dataset being inserted: descriptions from the first row to the last
// (each through parse, usually ParseDefaultValue), then the caller's values for this dataset index in their order.
// A caller's text that is a macro of defaultMacroValue gives that macro's value.
using ParseDefault = std::function<Variant(const QString& text, TField* field)>;
KALVOR_RULES void applyDefaultValues(TClientDataSet& dataSet, int dsIndex, const VariantArray& descriptions,
                                     const TDefaultValues& callerValues, const ParseDefault& parse,
                                     const DefaultValueContext& context);

// DefaultValue of a description row, empty when the row is out of range.
KALVOR_RULES QString defaultValueText(const VariantArray& descriptions, int row);

// A new identifier (32 upper-case hexadecimal digits) into the field "Id", when the dataset has it.
KALVOR_RULES void GenerateID(TClientDataSet& dataSet);

}  // namespace kalvor
