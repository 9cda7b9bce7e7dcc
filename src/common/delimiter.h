// How the columns of a text file are told apart.
#pragma once

namespace kalvor {

// Tab, ",", none (columns of fixed width), ";", a text of the caller's.
enum TDelimiter { dtTab, dtComma, dtFixedLen, dtSemiColon, dtChar };

}  // namespace kalvor
