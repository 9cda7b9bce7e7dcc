// The driver of the chosen fiscal printer.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

// Makes an object of the class that is registered under the kind's name and hands it the lines of the kind's section.
// True: it is the session's fiscal printer now. False: no class of that name, or one that is no fiscal printer.
BASE_PACKAGE bool CreateFiscalPrinterObject(const QString& kind, const QStringList& lines);

}  // namespace kalvor
