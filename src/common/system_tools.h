// Files, the operating system and the process, as the rules ask for them.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// A file or a folder of that name exists.
KALVOR_RULES bool CheckFileExists(const QString& path);
// True when the file exists and is not empty; the text is then its whole content, whatever of UTF-8 and
// Windows-1251 it is written in. False leaves the text as it was.
KALVOR_RULES bool GetTextFromFile(const QString& fileName, QString& text);
// The operating system's product name.
KALVOR_RULES QString GetWindowsVersion();
// Working set of the process in bytes, -1 when unknown.
KALVOR_RULES qint64 GetCurrentProccessMemoryUsage();

}  // namespace kalvor
