// The order of texts and their comparison without regard to case, the same on every machine.
//
// Order by primary weight: blanks, punctuation, signs, digits, Cyrillic in the order of the Bulgarian alphabet
// (letters of other Cyrillic alphabets stand beside their nearest), Latin, everything else by code. Case and
// accents do not count; й is a letter of its own. Texts of equal weights are equal in order.
#pragma once

#include <QStringView>
#include <vector>

#include "layer_export.h"

namespace kalvor {

// Below, at or above 0.
KALVOR_DATA int compareText(QStringView a, QStringView b);
// The weights as bytes, none of them 0: texts are in the order of their bytes.
void appendWeights(QStringView text, std::vector<quint8>& weights);
// The first eight of them as a number, 0 after the end.
quint64 weightPrefix(const quint8* weights, size_t count);

// One character without its case; texts fold character by character.
char16_t foldedCharacter(char16_t c);
std::vector<char16_t> charactersFoldedTo(char16_t folded);
void foldText(const char16_t* from, qsizetype length, char16_t* to);
QString foldedText(QStringView text);
bool equalFolded(QStringView a, QStringView b);

}  // namespace kalvor
