// A file written beside its target takes the target's place.
#pragma once

#include <QString>

class QTemporaryFile;

namespace kalvor {

// Where the name leads: links are followed, so that they stay links. DataError when something that is no file stands
// there, or its folder does not exist.
QString replacementTarget(const QString& fileName);

// The written and closed file, with the rights of the target or of a new file, safely on the disk and renamed.
// False: why; the target is as it was and the file is gone with its object.
bool replaceFile(QTemporaryFile& file, const QString& target, QString& reason);

}  // namespace kalvor
