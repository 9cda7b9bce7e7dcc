// Parts of the demo tour, by what they visit; each leaves the program where it found it.
#pragma once

#include "tour_steps.h"

namespace kalvor::tour {

// The client's own settings.
void visitSettings(TourDriver& driver);  // grids, sizes and orders are kept from then on
void visitPassword(TourDriver& driver);
void arrangeColumns(TourDriver& driver, const char* className);
void visitStoredSettings(TourDriver& driver);
void visitCalendar(TourDriver& driver);

// Lookups while typing and rows from a spreadsheet, in the invoice in front.
void typeAheadAndPaste(TourDriver& driver);

// The contractors out to a sheet and to a text file.
void exportContractors(TourDriver& driver);

// Import filters: a sample file, its lookup, a slip in the text, a trial; nothing is kept.
void visitImportFilters(TourDriver& driver);

// Filter, sort and search.
void composeTableFilter(TourDriver& driver);
void chooseInTableFilter(TourDriver& driver);
void applyTableFilter(TourDriver& driver);
void sortAndSearch(TourDriver& driver);

// The kinds of forms beside lists and cards: trees, edit grids with and without a filter panel.
void visitItemGroups(TourDriver& driver);
void visitEditGrids(TourDriver& driver);
void visitAdministration(TourDriver& driver);

}  // namespace kalvor::tour
