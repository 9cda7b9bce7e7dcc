// The local settings file: sections of name=value lines, read and written whole.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

// fullPath false: fileName is relative to the client's document folder.
//
// Reading replaces the list by the section's name=value lines in file order; a missing file or section gives
// an empty list. Names and values lose the blanks around them; comment lines (";") and empty lines are left out.
// Writing puts every line's key at the end of the section (an earlier one of that name goes); keys that the
// list does not name, other sections and comments stay where they were. The file is replaced in one step.
// Names are compared without regard to case. A failure is logged with the routine's name, answers false and
// leaves the list (the file) as it was.
KALVOR_RULES bool GetSectionFromIni(const QString& fileName, const QString& section, QStringList& lines,
                                    bool fullPath);
KALVOR_RULES bool SaveSectionToIni(const QString& fileName, const QString& section, const QStringList& lines);

// The same for the session's own file, KalvorClientINIFileName.
KALVOR_RULES bool GetSectionFromIni(const QString& section, QStringList& lines);
KALVOR_RULES bool SaveSectionToIni(const QString& section, const QStringList& lines);

// Lists of name=value lines: the value of a name (empty when missing, case does not matter), and whether it
// is there; the parts of one line.
KALVOR_RULES QString valueOfLine(const QStringList& lines, const QString& name);
KALVOR_RULES bool hasLine(const QStringList& lines, const QString& name);
KALVOR_RULES QString lineName(const QString& line);   // empty when there is no "="
KALVOR_RULES QString lineValue(const QString& line);

}  // namespace kalvor
