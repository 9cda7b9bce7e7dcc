// Folders, names and figures that only the operating system knows.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// All folders end with the separator.
KALVOR_PLATFORM QChar directorySeparator();
// The user's personal documents folder by the desktop's standard, or the one that the environment variable
// KALVOR_DOCUMENTS names; empty when there is none.
KALVOR_PLATFORM QString personalDocumentsFolder();
KALVOR_PLATFORM QString temporaryFolder();
// The host program's file name without ".exe".
KALVOR_PLATFORM QString hostProgramName();
// The folder of the host program.
KALVOR_PLATFORM QString hostProgramFolder();
// Settings for all users of this machine: /etc/kalvor/, or the folder that the environment variable
// KALVOR_SYSTEM_SETTINGS names. It need not exist.
KALVOR_PLATFORM QString systemSettingsFolder();
// Where the operating system keeps its own settings.
KALVOR_PLATFORM QString operatingSystemFolder();
// The same folder by names of eight characters and three, where the operating system has such.
KALVOR_PLATFORM QString shortFolderName(const QString& folder);
// Empty when the computer has none.
KALVOR_PLATFORM QString computerName();
// Name and version of the operating system as it calls itself.
KALVOR_PLATFORM QString systemProductName();
// Bytes of memory in use by this process (its working set), -1 when unknown.
KALVOR_PLATFORM qint64 processMemoryUsage();

}  // namespace kalvor
