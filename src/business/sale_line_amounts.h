// Amounts of a sale line: quantities in base units, discounts, totals, VAT, local currency. A document form attaches
// the change routines to its fields; each works on the current records of the header and of the lines.
//
// The form owns one guard and passes it to every routine. A change routine does nothing while the guard is set; it
// sets the guard, does its work, and clears it whatever happens, so the fields it writes start no other routine. The
// shared steps restore the guard's earlier value. Amounts round to the session's PrecisionAmount, prices to its
// PrecisionPrice. A field that is missing or a value that does not fit is logged with the routine's text; what was
// written by then stays.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// --- Shared steps ---------------------------------------------------------------------------------------------
KALVOR_RULES void CalcSrvSaleTotalAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void UpdateSrvSaleVATAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void UpdateSrvSaleUnitCost(TClientDataSet* header, TClientDataSet* line, bool& guard);
// The line's unit cost without VAT; raises when a field is missing.
KALVOR_RULES double SrvSaleGetCostWithoutVat(TClientDataSet* header, TClientDataSet* line);

// --- Change routines ------------------------------------------------------------------------------------------
KALVOR_RULES void SrvSaleLineDiscOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleLineDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleInvDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleTotalPriceOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);

// Base quantity from the quantity, then the discount and all amounts. The change of a quantity by hand keeps the
// line's price.
KALVOR_RULES void recalculateSaleLine(TClientDataSet* header, TClientDataSet* line, bool& guard);

}  // namespace kalvor
