// What every tour is made of: where the program is, and steps that a person takes often.
#pragma once

#include "data/client_dataset.h"
#include "registry/form_interfaces.h"
#include "tour_driver.h"

namespace kalvor::tour {

// The form in front and its master; null when there is none.
IBaseIntf* activeForm();
TClientDataSet* activeMaster();
bool activeFormIs(const char* className);

// The card of a sale invoice, and the lines of the one in front.
inline constexpr const char* invoiceCard = "TfEdSaleInvoice";
TClientDataSet* invoiceLines();

// A form of that class is in front with its records; a window without records; a dialog.
TourDriver::Condition formIs(const char* className);
TourDriver::Condition windowIs(const char* className);
TourDriver::Condition dialogIs(const char* className);

void logIn(TourDriver& driver);
void chooseInNavigator(TourDriver& driver, const QString& caption);
void openForm(TourDriver& driver, const QString& caption, const char* className);
void tabTo(TourDriver& driver, const QString& control);
// Moves the grid's current cell to a column, key by key: now, or as a step.
void gotoColumnNow(TourDriver& driver, const QString& field);
void gotoColumn(TourDriver& driver, const QString& field);
void filterCurrentColumn(TourDriver& driver, const QString& criterion, const char* picture);
void changeQuantityAndSave(TourDriver& driver, const QString& quantity, const char* pictures);

}  // namespace kalvor::tour
