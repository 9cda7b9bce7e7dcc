// The next number of a document series.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Adds the step to the number that the text holds from its first to its last decimal digit (0 to 9). Leading zeros and
// the characters around stay, and a number that outgrows its digits gets more of them: A-0099 gives A-0100, 999 gives
// 1000, 07/x gives 08/x. With prefixed, that many characters of the span as the prefix is long are no part of the
// number, and the prefix is written in their place. False when the new number passes the one in the maximum text (the
// number text has the new number then), and after an error, which is logged; a text that holds no such number stays.
KALVOR_RULES bool IncSeriesNo(QString& number, const QString& maximum, const QString& prefix, int step, bool prefixed);

}  // namespace kalvor
