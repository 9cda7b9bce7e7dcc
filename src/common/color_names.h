// Colours as the stored grid views write them: a name ("clWindow", "clRed") or $00BBGGRR.
//
// A colour is 0x00BBGGRR, or 0xFF0000NN for the system's colour number NN (5 = the window's background).
#pragma once

#include <QString>
#include <optional>

#include "layer_export.h"

namespace kalvor {

using ColorValue = quint32;
inline constexpr ColorValue clWindow = 0xFF000005;

// The name where the colour has one, else eight hexadecimal digits behind "$".
KALVOR_RULES QString colorToText(ColorValue color);
// Names in any case, "$" and hexadecimal digits, or a decimal number; nothing for any other text.
KALVOR_RULES std::optional<ColorValue> colorFromText(const QString& text);

}  // namespace kalvor
