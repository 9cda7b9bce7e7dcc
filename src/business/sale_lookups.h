// What the sale routines ask the server for: prices of a line, the VAT set-up of its groups. Internal.
#pragma once

#include <QHash>

#include "business/line_prices.h"
#include "business/sale_records.h"

namespace kalvor {

enum class PriceLookup : quint8 { NotDone, Failed, Done };
enum class PricePer : quint8 { LineMeasure, BaseMeasure };

// Asks for price and discount of the current line when its type takes a price (1, 3, 6) and the lookup is allowed.
// AllowInvoiceDisc takes the flag; a price (a discount) that differs from the one obtained last goes into OriginalPrice
// and UnitPrice (OriginalDiscount and LineDiscount). BaseMeasure: the unit price becomes the price times the
// measure's ratio. What the server has no answer for keeps its value.
PriceLookup lookUpLinePrice(const SaleRecords& records, bool allowed, PricePer per = PricePer::LineMeasure);

// VAT percent, calculation type and ledger of the line's two posting groups; nothing when one of them is empty.
// DataError `_err_VATConfiguration` when there is not exactly one set-up. Keeps its answers for the time of a walk.
class VatSetupLookup {
 public:
  void apply(const SaleRecords& records);

 private:
  QHash<QString, VariantArray> answers_;
};

}  // namespace kalvor
