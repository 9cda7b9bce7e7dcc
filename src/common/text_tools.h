// Small routines over texts.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// The text, an empty line between when there is one, then the message.
KALVOR_RULES QString AddMessageToString(const QString& text, const QString& message);
// Removes the part until the text holds it no more; what a removal brings together counts too.
KALVOR_RULES void RemoveAllSubString(QString& text, const QString& part);
KALVOR_RULES QString EndWithDirSlash(const QString& text, QChar character);
// The sign tells the order of two versions of up to four decimal parts; depth = how many parts count. A missing
// part, or one that is no number, is 0.
KALVOR_RULES int CompareVersions(const QString& a, const QString& b, int depth);
// Wraps at 32 bits; the empty text is 0. DataError "No Hex-Number" for any other character.
KALVOR_RULES int HexToInt(const QString& text);

}  // namespace kalvor
