// The order of texts and their comparison without regard to case, the same on every machine.
//
// Order by primary weight: blanks, punctuation, signs, digits, Cyrillic in the order of the Bulgarian alphabet
// (letters of other Cyrillic alphabets stand beside their nearest), Latin, everything else by code. Case and
// accents do not count; й is a letter of its own. Texts of equal weights are equal in order.
#pragma once

#include <QStringView>

#include "layer_export.h"

namespace kalvor {

// Below, at or above 0.
KALVOR_DATA int compareText(QStringView a, QStringView b);
// The first weights as a number: texts of different numbers are in the order of the numbers.
quint64 collationPrefix(QStringView text);

// One character without its case; texts fold character by character.
char16_t foldedCharacter(char16_t c);
void foldText(const char16_t* from, qsizetype length, char16_t* to);
QString foldedText(QStringView text);
bool equalFolded(QStringView a, QStringView b);

}  // namespace kalvor
