// Asking for the file that something is saved to.
#pragma once

#include "layer_export.h"

class QString;

namespace kalvor {

// The chosen file's name, with the extension when the user gave none; empty when nothing was chosen.
KALVOR_RULES QString askSaveFile(const QString& title, const QString& pattern, const QString& extension);

}  // namespace kalvor
