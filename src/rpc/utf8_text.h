// Text columns between UTF-16 in memory and UTF-8 on the wire. Whole columns go through here, so these are
// written for long runs of ASCII and of Cyrillic.
#pragma once

#include <QtCore/qglobal.h>

namespace kalvor::utf8 {

// Writes `count` UTF-16 units as UTF-8; a lone surrogate becomes U+FFFD. `out` has room for 3 bytes a unit.
// Returns the end of what was written.
char* fromUtf16(const char16_t* text, qsizetype count, char* out);

// How many UTF-16 units valid UTF-8 gives.
qsizetype utf16Units(const char* bytes, qsizetype size);

// Writes UTF-8 as UTF-16 and moves `out` behind it; false when the bytes are not valid. For valid input the room
// needed is utf16Units(); `limit` is the end of the room and is never passed.
bool toUtf16(const char* bytes, qsizetype size, char16_t*& out, const char16_t* limit);

}  // namespace kalvor::utf8
