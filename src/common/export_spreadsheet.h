// Records as a sheet of a spreadsheet file.
#pragma once

#include <functional>

#include "data/client_dataset.h"

namespace kalvor {

// A row of captions, then a row for each record of the master, or for each of its detail's with the master's values
// in front. Numbers, dates and booleans are such cells; a null value is an empty one. ".xlsx" files are written where
// the name ends so, ".xls" otherwise; an existing file is replaced when the new one is complete. detail may be null.
// The captions are comma lists (caption_list.h). The callback may be empty; it comes for every master record, which is
// current then, and reads its detail: the master's own scroll handlers do not run meanwhile.
//
// Nothing is raised; errors are in the log.
//
// The columns come in the order of the fields; a detail column of a field that the master columns have too is named
// "Детайли_" and its caption.
KALVOR_RULES void CommonExportToXLS(TClientDataSet* master, TClientDataSet* detail, const QString& masterCaptions,
                                    const QString& detailCaptions, const QString& fileName, const QString& sheetName,
                                    const std::function<void()>& beforeRecord = {});
// The columns come in the order of the lists, the names of detail columns begin with "_", and "." in names becomes
// "_". The user sees the progress and how it ended.
KALVOR_RULES void ExportToXLS(TClientDataSet* master, TClientDataSet* detail, const QString& masterCaptions,
                              const QString& detailCaptions, const QString& fileName, const QString& sheetName,
                              const std::function<void()>& beforeRecord = {});

}  // namespace kalvor
