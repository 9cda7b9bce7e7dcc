// The server's operations that several parts of the client call, with their arguments in order.
#pragma once

#include "rpc/remote_calls.h"

namespace kalvor {

// The text as an SQL literal: in single quotes, inner ones doubled.
KALVOR_RULES QString sqlLiteral(const QString& text);

// A new provider's name.
KALVOR_RULES QString createDynamicProvider(RemoteCalls& calls);
KALVOR_RULES void deleteDynamicProvider(RemoteCalls& calls, const QString& provider);

// Readies a provider with the form's stored query. 0 = done. Field descriptions, one array of 19 values a field,
// go to descriptions when it is given.
KALVOR_RULES int requestData(RemoteCalls& calls, int formId, int dsIndex, const QString& provider,
                             const FilterArray& filter, const QString& order, const ParameterArray& parameters,
                             VariantArray* descriptions = nullptr);

enum class RowsWanted : quint8 { First, All };

// Modes of RequestValue; a number above 0 is a stored query.
enum RequestMode : int { WholeStatement = -1, TableColumns = 0 };

// The number of rows found. value: one column's value, or the first row as an array; with All an array of row
// arrays.
KALVOR_RULES int requestValue(RemoteCalls& calls, int mode, const QString& source, const QString& columns,
                              const FilterArray& filter, Variant& value, RowsWanted rows);

}  // namespace kalvor
