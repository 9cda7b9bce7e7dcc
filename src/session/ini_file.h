// An ini file in memory: sections of name=value lines. Comments, empty lines and whatever is not understood keep
// their places; names of sections and keys are compared without regard to case.
#pragma once

#include <QStringList>

#include "layer_export.h"

namespace kalvor {

class KALVOR_RULES IniFile {
 public:
  // A missing file is an empty one. UTF-8, else Windows-1251. DataError when it cannot be read.
  static IniFile read(const QString& path);
  // Replaces the file in one step, as UTF-8. DataError when it cannot be written.
  void write(const QString& path) const;

  // The section's name=value lines in file order, without blanks around names and values; a missing section has none.
  QStringList section(const QString& name) const;
  // Puts the key at the end of the section (made when missing); an earlier one of that name goes.
  void setKey(const QString& section, const QString& name, const QString& value);
  void removeKey(const QString& section, const QString& name);
  void clearSection(const QString& section);  // its keys; comments stay

 private:
  qsizetype find(const QString& section) const;
  qsizetype endOf(qsizetype header) const;

  QStringList lines_;
  QString lineEnd_ = QStringLiteral("\n");
};

}  // namespace kalvor
