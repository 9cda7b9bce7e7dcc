// What follows on all lines when the user changes a field of a sale document's header.
//
// The routines walk the lines from the first to the last, each line edited and posted, and come back to the line that
// was current (by its Id). The first two set the guard and do nothing while it is set; the others leave it alone, so
// that the lines' own rules run with them. Errors are logged with the routine's text and what was written by then
// stays. priceLookup: the server may be asked for prices and discounts.
#pragma once

#include "data/client_dataset.h"

namespace kalvor {

// DocSubType_Id: the sub-type's series; then, when there are lines and the user says so, their prices anew.
KALVOR_RULES void SrvSaleSubDocTypeOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard,
                                            bool priceLookup);
// Currency_Id: unit prices by the ratio of the header's factor to the currency's rate on the document's date; without a
// rate they become 0. The header's factor and the lines' amounts are the caller's to bring up to date.
KALVOR_RULES void SrvSaleCurrencyOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard);

// InvToContragent_ID: prices, posting groups, currency, VAT set-up and amounts of every line.
KALVOR_RULES void InvToContragentOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard,
                                          bool priceLookup);
// PriceIncludingVAT: unit prices of lines that say otherwise, with or without the VAT of their percent's whole part.
KALVOR_RULES void SrvSalePriceIncudingVATOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard);
// BusinessGroup_Id.
KALVOR_RULES void SrvSaleBusinessGroupOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard);
// PayTerm_Id: DueDate = DocumentDate + the term's days; a term that is not found has none.
KALVOR_RULES void SrvSalePayTermOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard);

}  // namespace kalvor
