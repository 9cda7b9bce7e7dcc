// What the steps of every tour wait for and do.
#pragma once

#include "registry/form_interfaces.h"
#include "tour_driver.h"

namespace kalvor {

IBaseIntf* activeForm();
TClientDataSet* activeMaster();  // null without a form
bool activeFormIs(const char* className);

// The form is active and its records are there; a window without records is active; the modal dialog is of that class.
TourDriver::Condition formIs(const char* className);
TourDriver::Condition windowIs(const char* className);
TourDriver::Condition dialogIs(const char* className);

// Moves the grid's current cell to a column, key by key.
void gotoColumn(TourDriver& driver, const QString& field);

}  // namespace kalvor
