// Amounts of a sale line and of its document, by the same steps and in the same arithmetic (80-bit extended, stored as
// doubles) as the client's sale rules, so that opening and recalculating a document made here changes nothing.
// Every amount is in whole millionths; percents too.
#pragma once

#include <QtCore/qglobal.h>
#include <map>

#include "layer_export.h"

namespace kalvor::server {

struct SaleRules {
  int amountDecimals = 2;
  int priceDecimals = 5;
};

struct SaleLineInput {
  qint64 quantity = 0;
  qint64 unitPrice = 0;
  qint64 discountPercent = 0;
  qint64 vatPercent = 0;
  qint64 currencyFactor = 1'000'000;  // local currency for one unit of the document's
  bool foreignCurrency = false;
  bool priceIncludesVat = false;
};

struct SaleLineAmounts {
  qint64 lineDiscountAmount = 0;
  qint64 totalPrice = 0;
  qint64 totalValue = 0;     // without VAT
  qint64 vatValue = 0;
  qint64 totalVat = 0;       // with VAT
  qint64 totalValueLcy = 0;
  qint64 vatValueLcy = 0;
  qint64 totalVatLcy = 0;
  qint64 unitCost = 0;       // net unit price after discounts
  qint64 unitCostLcy = 0;
};

KALVOR_SERVER SaleLineAmounts saleLineAmounts(const SaleLineInput& line, const SaleRules& rules);

struct SaleTotals {
  qint64 totalValue = 0;
  qint64 vatValue = 0;
  qint64 totalVat = 0;
  qint64 totalValueLcy = 0;
  qint64 vatValueLcy = 0;
  qint64 totalVatLcy = 0;

  bool operator==(const SaleTotals&) const = default;
};

// Sums lines; VAT is rounded once a percent, not once a line.
class KALVOR_SERVER SaleTotalsBuilder {
 public:
  void add(qint64 vatPercent, qint64 totalValue, qint64 totalValueLcy);
  SaleTotals totals(const SaleRules& rules) const;
  void clear() { groups_.clear(); }

 private:
  struct Group {
    qint64 value = 0;
    qint64 valueLcy = 0;
  };
  std::map<qint64, Group> groups_;
};

// Half away from zero at that many decimals, by the first dropped digit; negative decimals change nothing.
KALVOR_SERVER double roundUp(int decimals, long double value);

}  // namespace kalvor::server
