// An import by form identifier: into the caller's form, or into a new one that nobody sees.
#pragma once

#include "import/import_filter.h"
#include "registry/form_types.h"

namespace kalvor {

class TfBase;

// True: the import ran. A filter with ONLY_LINES imports into the form that is passed. False: no class is registered
// for the form (logged), or the run broke off, and error says why.
BASE_PACKAGE bool RequestImport(int formId, const TImportFilter& filter, const QString& fileName,
                                const QString& keyField, const QString& keyValue, QString& error, ShowOption options,
                                bool unattended, TfBase* form);

}  // namespace kalvor
