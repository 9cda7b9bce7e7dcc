// The help file that lies next to the program, opened at a form's topic.
#pragma once

#include <QString>
#include <functional>

#include "layer_export.h"

namespace kalvor {

// "KalvorHelp.chm" in the program's folder.
BASE_PACKAGE QString helpFileName();
// Opens it at the topic numbered by the form identifier: in the installed viewer, else the page
// KalvorHelp/<identifier>.html beside the file, else the file itself. Tells the user when there is no help.
BASE_PACKAGE void showHelpTopic(int formId);

// Gets the help file and the topic; false = it could not show it. None at first.
using HelpViewer = std::function<bool(const QString& file, int topic)>;
BASE_PACKAGE void installHelpViewer(HelpViewer viewer);

}  // namespace kalvor
