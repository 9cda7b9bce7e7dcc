// How an export ended, for the log and for the user.
#pragma once

#include <functional>

#include "layer_export.h"

class QString;

namespace kalvor {

enum class ExportEnding : quint8 { Done, Stopped, Failed };

// Runs the body; what it throws ends in the log under the context. The body answers false when the user stopped it.
ExportEnding endingOf(const QString& context, const std::function<bool()>& body);
// The closing message; a user who stopped the export needs none.
void tellEnding(ExportEnding ending);

}  // namespace kalvor
