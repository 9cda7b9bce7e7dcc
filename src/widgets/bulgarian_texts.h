// Bulgarian texts of the toolkit's own buttons, menus and dialogs.
#pragma once

#include "layer_export.h"

class QCoreApplication;

namespace kalvor {

// Loads the toolkit's packaged translation and puts our own table of the standard texts underneath, so that
// a missing package or a gap in it still leaves Да, Не and Отказ. Month and day names become Bulgarian too.
// Installing twice does nothing.
KALVOR_WIDGETS void installBulgarianTexts(QCoreApplication& application);

}  // namespace kalvor
