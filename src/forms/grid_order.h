// The local order of a grid's records, as clicks on its titles build it.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

enum class TitleClick : unsigned char {
  OrdersByIt,  // a plain click
  AddsToOrder  // with Ctrl or Shift
};

// The index field names after a click on a field's title. A plain click orders by that field alone; an adding one puts
// it behind the fields that are there already, and turns its direction when it is one of them.
KALVOR_RULES QString orderAfterTitleClick(const QString& order, const QString& fieldName, TitleClick click);

}  // namespace kalvor
