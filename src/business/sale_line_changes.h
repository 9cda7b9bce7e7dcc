// What follows when the user changes a field of a sale line. One routine a field; each works on the current records.
// A routine does nothing while the guard is set, sets it while it works and clears it whatever happens. Errors are
// logged with the routine's text and what was written by then stays; see sale_line_amounts.h for the arithmetic.
//
// suppress: the form asks for nothing to happen. priceLookup: the server may be asked for price and discount.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// --- What is sold -----------------------------------------------------------------------------------------------
KALVOR_RULES void SrvSaleDetailCodeOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress,
                                            bool priceLookup);
KALVOR_RULES void SrvSaleQuantityOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress,
                                          bool priceLookup);
KALVOR_RULES void SrvSaleMeasureOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress,
                                         bool priceLookup);
// The price follows the ratio; the amounts are the caller's to compute.
KALVOR_RULES void SrvSaleQtyPerUnitOfMeasureOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);

// --- Discounts and totals ---------------------------------------------------------------------------------------
KALVOR_RULES void SrvSaleLineDiscOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleLineDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleInvDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleTotalPriceOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);  // may raise

// --- Unit cost: becomes a discount off the unit price; the amounts are the caller's to compute --------------------
KALVOR_RULES void SrvSaleUnitCost_ACYOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleUnitCost_LCYOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);

// --- Posting groups: VAT by the set-up of the groups, then the unit price from the unit cost -----------------------
KALVOR_RULES void SrvSaleVATProdPostingGroupOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleGenProdPostingGroupOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard);

// --- Validations of QtyToShip and QtyToInvoice: DataError when more than the quantity would be shipped (invoiced) --
KALVOR_RULES void SrvSaleValidateQuantityShipped(TClientDataSet* header, TClientDataSet* line, bool& guard);
KALVOR_RULES void SrvSaleValidateQuantityInvoiced(TClientDataSet* header, TClientDataSet* line, bool& guard);

}  // namespace kalvor
