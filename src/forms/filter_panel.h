// The controls of a filter panel: what each shows for the filters in force, when leaving one changes the filter, and
// the filter that they build.
#pragma once

#include "data/variant.h"
#include "registry/form_types.h"

namespace kalvor {

enum class FilterControlKind : quint8 {
  EnhancedDropDown,  // value: a key as text, "" = none; shows what the server says of it
  FlatDropDown,      // value: the position of the selected item, -1 = none
  FlatEdit           // value: the text
};

// A control of the panel, as far as the rules know it.
class KALVOR_RULES PanelControl {
 public:
  virtual ~PanelControl();
  virtual FilterControlKind kind() const = 0;
  virtual Variant value() const = 0;
  // Nobody is asked and nothing is applied.
  virtual void setValue(const Variant& value) = 0;
};

struct TFilterControl {
  PanelControl* Control = nullptr;
  QString FieldName;            // of the master
  bool CompareStored = false;   // leaving compares with the stored value instead of the one on entering
  Variant CurrentValue;
  Variant EnteredValue;
  Variant StoredValue;
};
using TFilterControlArray = QList<TFilterControl>;

// The value of a control that filters nothing: "" or -1.
KALVOR_RULES Variant emptyPanelValue(FilterControlKind kind);
// What a control shows for a filter line. "LIKE" loses the blanks around it, one leading and one trailing "%" and
// enclosing quotes; a drop-down of positions shows nothing for a text that is no number.
KALVOR_RULES Variant shownPanelValue(FilterControlKind kind, const FilterRow& line);
// What the value is compared with on leaving, and goes back to when the user keeps his changes.
KALVOR_RULES const Variant& rememberedPanelValue(const TFilterControl& entry);
KALVOR_RULES bool panelValueChanged(const TFilterControl& entry);

// Clears every control, then shows the form filter's and the caller filter's lines in those whose field has that
// filter name (without regard to case; origins: filter names, by the position of the control). Gives the has-filter
// flag: the form filter has a line.
KALVOR_RULES bool showFiltersInPanel(const TFilterControlArray& controls, const QStringList& origins,
                                     const FilterArray& formFilter, const FilterArray& callerFilter);

// One line for every control that holds a value: an edit asks for texts that contain it, a drop-down for equality.
KALVOR_RULES FilterArray panelFilter(const TFilterControlArray& controls, const QStringList& origins);

// The form filter after the panel built its own: lines on the panel's fields are replaced, the others stay.
KALVOR_RULES FilterArray formFilterWithPanel(const FilterArray& formFilter, const QStringList& origins,
                                             const FilterArray& panel);

}  // namespace kalvor
