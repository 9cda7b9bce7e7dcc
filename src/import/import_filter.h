// How a data file becomes records of one form: the parameters of an import, as the administrator wrote them.
// The stored text is described in docs/file-formats.md.
#pragma once

#include <QStringList>

#include "layer_export.h"
#include "registry/selector_values.h"

namespace kalvor {

// Entries "name=value" in the order of the stored text. A name is found without regard to case, the first of several
// equal ones.
class KALVOR_RULES ImportEntries {
 public:
  void append(const QString& entry) { entries_.append(entry); }
  int count() const { return int(entries_.size()); }
  bool isEmpty() const { return entries_.isEmpty(); }
  // The part before the first "=" (the whole entry without one), and everything after it.
  QString name(int index) const;
  QString value(int index) const;
  // Empty when no entry has the name.
  QString value(const QString& name) const;
  bool contains(const QString& name) const { return find(name) >= 0; }
  const QStringList& entries() const { return entries_; }

 private:
  int find(const QString& name) const;

  QStringList entries_;
};

class KALVOR_RULES TImportFilter {
 public:
  explicit TImportFilter(int formId) : FormId(formId) {}

  // Appends what the five sections of the text hold, so it is called once; a missing section adds nothing.
  void LoadImportParams(const QString& text);
  QString option(const QString& key) const { return Options.value(key); }

  ImportEntries CdsMaster;        // position = field description of the master record
  ImportEntries CdsDetail;        // the same of a detail line; empty: the file holds master records only
  ImportEntries Options;
  ImportEntries LinkFieldsDescr;  // list name = field names, separated by ","
  ImportEntries DefaultSelector;  // fallback lookups
  bool Loaded = false;
  int FormId = 0;
  QString DPSchema;               // XSLT document of an XML source
};

// The text between "[NAME]" and "[##NAME]", each carriage return with its line feed a blank; empty without one of the
// two tags.
KALVOR_RULES QString GetRefFieldsDescr(const QString& text, const QString& section);
// Appends the trimmed, non-empty entries of a section's content.
KALVOR_RULES void GetFldsDescrAsStrList(const QString& content, ImportEntries& list);

// The system's formats with the filter's DATE_FORMAT, DATE_SEPARATOR and DECIMAL_SEPARATOR in their place.
KALVOR_RULES void SetFormatSetting(const TImportFilter& filter, TFormatSettings& settings);

}  // namespace kalvor
