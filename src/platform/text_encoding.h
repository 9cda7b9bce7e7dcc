// The client's 8-bit code page.
#pragma once

#include <QByteArray>
#include <QString>

#include "layer_export.h"

namespace kalvor {

// Characters that Windows-1251 lacks become "?".
KALVOR_PLATFORM QByteArray toWindows1251(QStringView text);
KALVOR_PLATFORM QString fromWindows1251(QByteArrayView bytes);
// A text file's bytes: UTF-8 (with or without its mark) when they are that, else Windows-1251.
KALVOR_PLATFORM QString decodeTextFile(QByteArrayView bytes);

}  // namespace kalvor
