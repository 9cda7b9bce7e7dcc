// The walk of an export over a master and its detail.
#pragma once

#include <functional>

#include "common/export_columns.h"
#include "common/run_progress.h"

namespace kalvor {

enum class ScrollHandlers : quint8 { Run, Detached };

// What is walked over. A detail is the master record's: the master's scroll handlers, or beforeRecord, see to that.
struct ExportWalk {
  TClientDataSet* master = nullptr;
  TClientDataSet* detail = nullptr;          // null: none
  ScrollHandlers handlers = ScrollHandlers::Run;
  std::function<void()> beforeRecord;        // every master record, which is current then; may be empty
  RunProgress* progress = nullptr;           // null: none
  QString fileName;                          // for the progress
};

using ExportLine = std::function<void(ExportRow master, ExportRow detail)>;

// Fetches all records and calls the line for each master record, or for each detail record of it. rebind comes before
// the lines of a master record wherever the datasets may have been opened anew. Screen updates wait, and the master is
// back on its record afterwards, also after an error. False: the user stopped it.
bool walkExport(const ExportWalk& walk, const std::function<void()>& rebind, const ExportLine& line);

}  // namespace kalvor
