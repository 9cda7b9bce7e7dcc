// The lists that the demo company's lookups open.
#pragma once

#include "../forms/sample_forms.h"
#include "widgets/db_edit.h"
#include "widgets/db_grid_ex.h"

namespace kalvor::testing {

class TfBrItem : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfBrNomenclature : public TfBaseBrowse {
  Q_OBJECT
 public:
  using TfBaseBrowse::TfBaseBrowse;
};

}  // namespace kalvor::testing
