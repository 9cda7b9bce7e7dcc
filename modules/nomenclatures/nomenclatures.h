// What sale documents refer to: contractors, items and the short lists. They are metadata alone: fields, layout,
// filters and defaults come from the server.
#pragma once

#include "forms/windows/base_browse.h"
#include "forms/windows/base_edit.h"

namespace kalvor {

class TfBrContragent : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfEdContragent : public TfBaseEditMaster {
  Q_OBJECT
 public:
  using TfBaseEditMaster::TfBaseEditMaster;
};

class TfBrItem : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfEdItem : public TfBaseEditMaster {
  Q_OBJECT
 public:
  using TfBaseEditMaster::TfBaseEditMaster;
};

class TfBrNomenclature : public TfBaseBrowseCard {
  Q_OBJECT
 public:
  using TfBaseBrowseCard::TfBaseBrowseCard;
};

class TfEdNomenclature : public TfBaseEditMaster {
  Q_OBJECT
 public:
  using TfBaseEditMaster::TfBaseEditMaster;
};

}  // namespace kalvor
