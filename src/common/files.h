// Files and folders: deleting, copying, the system's folders; the parts of host and location texts.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// Deletes every file of that extension ("txt" or ".txt", in any case) in the folder, not below it; 0. A file that
// cannot be deleted stays, and an empty folder name deletes nothing.
KALVOR_RULES int DeleteFilesWithExt(const QString& folder, const QString& extension);
// The same by a mask of "*" and "?"; "*.*" is every file.
KALVOR_RULES void DeleteFilesInDirectory(const QString& folder, const QString& mask);

// Numbered as the shell numbers them.
enum class ShellOperation : quint8 { Move = 1, Copy = 2, Delete = 3, Rename = 4 };

// The operation on a file, or on a folder with all that is in it, for the user in front of the main window: the user
// is asked before a file is replaced and told why something failed. A target that is a folder takes the source under
// its own name (not for Rename). Delete has no target. True when all was done.
KALVOR_RULES bool ShellFileOperation(const QString& source, const QString& target, ShellOperation operation);

// The file name with its folder in the short form, where the operating system has one.
KALVOR_RULES QString GetShortFilePath(const QString& fileName);

// The system settings folder and the operating system's folder, without a separator at their end. The second pair is
// false, with the text as it was, when the folder is not known.
KALVOR_RULES QString IP_GetWinSysDir();
KALVOR_RULES QString IP_GetWinDir();
KALVOR_RULES bool ReturnSystemDirectory(QString& text);
KALVOR_RULES bool ReturnWindowsDirectory(QString& text);

KALVOR_RULES QString IPGetComputerName();  // "(unknown)" when there is none
KALVOR_RULES QString GetHostName();        // the name and ":"; empty when there is none

// Without everything up to the first ":", when there are more than two items between ":".
KALVOR_RULES QString RemoveHostNameFromPath(const QString& path);

// Parts of a location: ftp://host/folder/sub or host/folder/sub.
KALVOR_RULES QString ExtractIPHostName(const QString& location);
KALVOR_RULES QString ExtractIPDir(const QString& location);       // after "host/"; the whole text without a host
KALVOR_RULES QString ExtractIPFileName(const QString& location);  // after the last "/", or the whole text

}  // namespace kalvor
