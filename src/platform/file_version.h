// What a program or library file says of itself: its version and its texts.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Version of a file as two numbers: high holds major and minor version, low release and build, 16 bits each. From the
// version resource of a Windows file, else from the ending of a shared library's name ("libx.so.1.2.3", links
// followed), else, for the program that is running, the version that it was started under. 0 without any of them.
// SilentAbort when the file cannot be read.
KALVOR_PLATFORM quint32 GetFileVersion(const QString& fileName, bool high);

// The four parts, and as the text "major.minor.release.build".
KALVOR_PLATFORM QString GetFileVersionDetailed(const QString& fileName, int& major, int& minor, int& release,
                                               int& build);

// The text of that key ("InternalName") in the file's version resource, of its first language; empty without one.
KALVOR_PLATFORM QString GetFileInternalName(const QString& fileName, const QString& key);

}  // namespace kalvor
