// The parts of a tour that filter, sort and search.
#pragma once

#include "tour_driver.h"

namespace kalvor {

void composeTableFilter(TourDriver& driver);   // over the filtered list of invoices; gives up
void chooseInTableFilter(TourDriver& driver);  // over an invoice: a value from a lookup; gives up
void applyTableFilter(TourDriver& driver);     // to the list of contractors
void sortAndSearch(TourDriver& driver);        // in it

}  // namespace kalvor
