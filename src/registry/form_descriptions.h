// What the server knows of a form identifier: class, caption, base table, default filter and order. Asked once a
// session and kept.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "registry/form_types.h"

namespace kalvor {

// A row as `GetFormsDescription` delivers it; missing columns are empty.
KALVOR_RULES TFormData formDataFromRow(const VariantArray& row);

class KALVOR_RULES FormDescriptions {
 public:
  // Asks the server; gives the count of rows (0 or less = unknown form) and the rows.
  using Source = std::function<int(const QString& formId, int dsIndex, VariantArray& rows)>;
  explicit FormDescriptions(Source source);

  // The description, null when the form is not registered (the user was told). The pointer stays good until clear().
  const TFormData* find(const QString& formId, int dsIndex);
  const TFormData* cached(const QString& formId, int dsIndex) const;
  void clear() { entries_.clear(); }

 private:
  struct Entry {
    QString formId;
    TFormData data;
  };
  Source source_;
  std::vector<std::unique_ptr<Entry>> entries_;
};

// The session's, over its server connection.
KALVOR_RULES FormDescriptions& formDescriptions();

// TELException with "uKalvorUtils.GetFromDataObject" when the call itself fails.
KALVOR_RULES const TFormData* GetFromDataObject(const QString& formId, int dsIndex);
// The cached caption, or empty.
KALVOR_RULES QString GetFormCaption(const QString& formId);

}  // namespace kalvor
