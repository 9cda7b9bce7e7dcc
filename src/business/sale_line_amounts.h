// Amounts of a sale line: total, VAT, local currency, unit cost. The steps that every change of a line ends with.
//
// The form owns one guard and passes it to every sale routine. While the guard is set no change routine starts, so
// the fields that a routine writes set off nothing. The steps below set the guard while they run and leave it as it
// was. Computed in 80-bit extended precision; amounts round to the session's PrecisionAmount, prices to its
// PrecisionPrice, half away from zero; fields are doubles. A null field counts as 0. A field that is missing or a value
// that does not fit is logged with the routine's text; what was written by then stays.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// TotalPrice, then the VAT amounts.
KALVOR_RULES void CalcSrvSaleTotalAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard);
// TotalValue, VATBaseAmount, VATValue, TotalVAT and the three in local currency.
KALVOR_RULES void UpdateSrvSaleVATAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard);
// UnitCost_ACY and UnitCost_LCY: the net unit price after discounts, in document and in local currency.
KALVOR_RULES void UpdateSrvSaleUnitCost(TClientDataSet* header, TClientDataSet* line, bool& guard);
// The line's unit cost without VAT; raises when a field is missing.
KALVOR_RULES double SrvSaleGetCostWithoutVat(TClientDataSet* header, TClientDataSet* line);

}  // namespace kalvor
