// Lookups of an import: codes of the file become values of existing records.
#pragma once

#include <functional>

#include "import/import_filter.h"
#include "import/import_line.h"
#include "session/server_calls.h"

namespace kalvor {

struct ImportLookup;

// What a lookup needs from outside; the import run puts its own in, with the answers of the run remembered.
struct ImportServices {
  // As requestValue of the session's server connection.
  std::function<int(int query, const QString& source, const QString& columns, const FilterArray& filter,
                    Variant& value, RowsWanted rows)>
      RequestValue;
  // A line for the message list of the progress window; empty: there is no window.
  std::function<void(const QString& text)> AddMessage;
  // A trial is told why a lookup gives nothing, here instead of in the list and the log; conditions: as the list has them.
  std::function<void(const ImportLookup& lookup, const QString& reason, const QString& conditions)> LookupFailed = {};
  // A trial is told of every line that a row of the file makes, first a document's master. With it a lookup that fails
  // does not end its document: what else is in the rows is read, and seen, too.
  std::function<void(const TImportLine& line, int rowNumber)> LineRead = {};
};

// Runs one lookup (a description of kind 2, its conditions' positions already replaced by values) and appends its
// cells. False: nothing was found, or too much; the reason is in the import error log and in the message list.
// fallbacks: further descriptions, taken by the 1-based index in item 4; a fallback has none of its own. Does not
// raise.
KALVOR_RULES bool ExecImportSelector(const QString& description, const TImportFilter& filter, TImportLine& line,
                                     int rowNumber, const QStringList& fallbacks, const ImportServices& services);

// Adds the conditions of "field|operator|type|value|conjunction##..." to those that are there. The types are the
// variant type codes listed in docs/file-formats.md. DataError for a value that is not of its type.
// Numbers and dates are read as the settings have them, else with a decimal point and as people write dates.
KALVOR_RULES void AddAdvFilter(FilterArray& filter, const QString& conditions, const TFormatSettings& settings = {});

}  // namespace kalvor
