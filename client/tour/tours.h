// The tours: what is done, in which order, with a picture of each window.
#pragma once

#include "tour_driver.h"

namespace kalvor {

// Ends the process when the log-in window is painted.
void addLogInTour(TourDriver& driver);

// From log-in to a changed and saved invoice of the demo company, then the other forms.
void addDemoTour(TourDriver& driver);

// The way of a retail journal's invoice: C* leaves the cancellations, invoice 536365 opens, a quantity changes, it is
// saved. Expects the journal loaded into the company that is logged in to; fails where something does not hold.
void addRetailTour(TourDriver& driver);

// Every change of an invoice's line and header that recalculates it, with a picture after each.
void addInvoiceTour(TourDriver& driver);

// From log-in to a saved new invoice of five lines, three of whose items are found by a part of their names.
void addNewInvoiceTour(TourDriver& driver);

// The journal.txt of the current folder imported into the company that is logged in to, from the empty list: filter, file,
// the question about the first record that fails, the end. Expects items and customers, and no invoices.
void addImportTour(TourDriver& driver);

// The part of the demo tour that writes and tries import filters.
void addImportFiltersTour(TourDriver& driver);

}  // namespace kalvor
