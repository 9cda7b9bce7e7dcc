// Where child windows live: the gate through which forms reach the window that hosts them.
#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>

#include "layer_export.h"

namespace kalvor {

class BASE_PACKAGE FormHost {
 public:
  virtual ~FormHost();
  virtual QMdiArea* childArea() = 0;
};

// The installed host; null (as at first) means that forms are top-level windows. Not owned.
BASE_PACKAGE FormHost* formHost();
BASE_PACKAGE void installFormHost(FormHost* host);

// Puts a form into the child area (or makes it a top-level window); does not show it. The window closes when the
// form closes, and asks the form first.
BASE_PACKAGE void adoptChildWindow(QWidget* form);
// Below and right of the child windows that are there already.
BASE_PACKAGE void cascadeChildWindow(QMdiSubWindow* window);
// One that would stick out of the area is made smaller, and moved in where that is not enough.
BASE_PACKAGE void fitChildWindow(QMdiSubWindow* window);
// The window around a form: its sub-window, dialog or itself.
BASE_PACKAGE QWidget* windowOf(QWidget* form);
BASE_PACKAGE void activateForm(QWidget* form);
// The form that works in the active child window, or in the active top-level window; null when there is none.
BASE_PACKAGE QWidget* activeFormWidget();

}  // namespace kalvor
