// The parameter text of an import filter as somebody edits it: every entry with its place in the text, and changes that
// leave the rest of the text as it was written. The format is that of docs/file-formats.md.
#pragma once

#include <QList>
#include <QString>

#include "import/import_filter.h"

namespace kalvor {

enum class ImportSection : quint8 { Options, Master, Detail, LinkFields, Fallbacks };

// An entry as TImportFilter reads it.
struct ImportTextEntry {
  qsizetype start = 0;  // in the text
  qsizetype length = 0;
  QString text;         // trimmed, line ends as blanks

  QString name() const;   // before the first "="; the whole entry without one
  QString value() const;  // behind it
};

class KALVOR_RULES ImportText {
 public:
  explicit ImportText(QString text = {});

  const QString& text() const { return text_; }
  TImportFilter filter(int formId, const QString& schema = {}) const;
  QList<ImportTextEntry> entries(ImportSection section) const;
  // Value of the first entry of the name, without regard to case.
  QString value(ImportSection section, const QString& name) const;
  int lineAt(qsizetype offset) const;     // from 1
  qsizetype tagAt(ImportSection section) const;  // -1: the section has no opening tag
  bool isOpen(ImportSection section) const;      // it has that tag and no closing one

  // Changes. DataError, in Bulgarian, for an entry that the format cannot hold (one with "##" or a section's tag) and
  // for a section that is not closed; the text is then as it was. A section that is missing is added at the end.
  void setEntry(ImportSection section, int index, const QString& entry);
  void addEntry(ImportSection section, const QString& entry);
  void removeEntry(ImportSection section, int index);
  // The first entry of the name: changed, added, or with an empty value taken out.
  void setValue(ImportSection section, const QString& name, const QString& value);

 private:
  struct Range {
    qsizetype start = -1;
    qsizetype end = -1;
  };
  Range content(ImportSection section) const;
  void replace(qsizetype start, qsizetype length, QString with);

  QString text_;
};

// A text as somebody typed it (a document's paragraph ends too), with the line ends that an entry takes for blanks.
KALVOR_RULES QString storedImportText(const QString& typed);
KALVOR_RULES QString importSectionName(ImportSection section);
inline constexpr ImportSection importSections[] = {ImportSection::Options, ImportSection::Master, ImportSection::Detail,
                                                   ImportSection::LinkFields, ImportSection::Fallbacks};

}  // namespace kalvor
