// What the server knows of a form identifier: class, caption, base table, default filter and order. Asked once a
// session and kept in the session's form list.
#pragma once

#include "registry/form_types.h"

namespace kalvor {

// A row as `GetFormsDescription` delivers it; missing columns are empty.
KALVOR_RULES TFormData formDataFromRow(const VariantArray& row);

// The description of a form identifier (decimal text) and dataset index; null when the form is not registered (the
// user was told). The pointer stays good for the session. TELException with "uKalvorUtils.GetFromDataObject" when the
// server cannot be asked.
KALVOR_RULES const TFormData* GetFromDataObject(const QString& formId, int dsIndex);
// The same, without asking the server; null when it is not known yet.
KALVOR_RULES const TFormData* cachedFormData(const QString& formId, int dsIndex);
// The cached caption, or empty.
KALVOR_RULES QString GetFormCaption(const QString& formId);

}  // namespace kalvor
