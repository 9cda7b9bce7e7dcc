// Where the files of a transfer lie. Their names come from another site, and may be written by another system.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// The path with this system's separator for either of "/" and "\".
KALVOR_RULES QString withNativeSeparators(const QString& path);

// Path of a data file of an info file. DataError when the name leads out of the info file's folder (an absolute name,
// "..", a symbolic link) or is not that of a file.
KALVOR_RULES QString transferDataFile(const QString& infoFile, const QString& name);

}  // namespace kalvor
