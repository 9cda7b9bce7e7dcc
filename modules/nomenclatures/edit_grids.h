// Short lists that are edited where they stand, and the item prices with their filter panel.
#pragma once

#include "forms/windows/base_edit_grid.h"

namespace kalvor {

class TfEdMeasures : public TfBaseEditGridSmall {
  Q_OBJECT
 public:
  using TfBaseEditGridSmall::TfBaseEditGridSmall;
};

// The key is the ISO code that the user types.
class TfEdCurrencies : public TfBaseEditGridSmall {
  Q_OBJECT
 public:
  using TfBaseEditGridSmall::TfBaseEditGridSmall;
  void GenerateID(TClientDataSet*) override {}
};

class TfEdPaymentTerms : public TfBaseEditGridSmall {
  Q_OBJECT
 public:
  using TfBaseEditGridSmall::TfBaseEditGridSmall;
};

class TfEdItemPrices : public TfBaseEditGridFilter {
  Q_OBJECT
 public:
  explicit TfEdItemPrices(QWidget* parent = nullptr);
  FilterArray BuildTabFilter() override;
};

}  // namespace kalvor
