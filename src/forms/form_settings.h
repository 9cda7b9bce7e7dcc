// The settings that a form keeps for its user: size, sort order, filter, in the group "Form_Id" + identifier of
// the user settings document.
#pragma once

#include <QSize>
#include <QStringList>
#include <optional>

#include "data/variant.h"
#include "registry/form_types.h"
#include "session/ini_options.h"

namespace kalvor {

KALVOR_RULES QString formSettingsGroup(int formId);

struct LoadedFormSettings {
  std::optional<QSize> size;         // pixels
  std::optional<QString> sortOrder;  // may be empty
  FilterArray filter;                // no rows = leave the form filter
};
// What the lines mean for a form that is opened this way. A stored filter counts only for a form that has none
// and is opened neither to choose records nor as a card.
KALVOR_RULES LoadedFormSettings loadFormSettings(const QStringList& lines, const TIniOptions& use, ShowOption options,
                                                 const FilterArray& formFilter);

struct FormSettingsToSave {
  QSize size;
  bool maximized = false;
  FilterArray formFilter;
  QString sortOrder;
};
// The lines to write as the whole group: those of other owners (FloatPanel, DefaultPF, ...) as they were, then
// FormWidth, FormHeight, Filter, SortOrder as far as the options keep them.
KALVOR_RULES QStringList formSettingsLines(const QStringList& stored, const FormSettingsToSave& form,
                                           const TIniOptions& use, ShowOption options);

}  // namespace kalvor
