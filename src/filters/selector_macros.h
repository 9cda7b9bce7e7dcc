// The half of the filter macros that refers to the record being edited, its form and the control that opened a lookup.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

class SelectorControl;
class TSelector;

// Expands the macro of one value: <#Field(name)#> and <#MasterField(name)#> by the fields of the dataset and of the
// master of the form that owns it, <#Param(OwnerValue)#> by the control's text, the other session parameters,
// <#Const(text)#>, <#SqlParam(name)#> by the parameters of that form. A macro whose referent is missing stays as it
// is written; so does every other value. dataSet and control may be null. TELException with
// "uKalvorUtils.ReturnFilterFieldValue".
KALVOR_RULES Variant ReturnFilterFieldValue(const QString& value, TClientDataSet* dataSet,
                                            const SelectorControl* control, QObject* owner);

// A stored filter string with the macros of its values expanded. TELException with
// "uKalvorCommonUtils.BuildSelectorFilter".
KALVOR_RULES FilterArray BuildSelectorFilter(const QString& filterText, TClientDataSet* dataSet,
                                             const SelectorControl* control, QObject* owner);

// For places with no record: the parts of both filter texts of every item that hold "<#Field(" go.
KALVOR_RULES void RemoveSelectorFilterLinesWithFieldRels(TSelector& selector);

}  // namespace kalvor
