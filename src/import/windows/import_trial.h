// A trial of an import: the first documents of a file go into an unsaved record of the real form by the code of the real
// run, are looked at, and cancelled. Nothing is saved, numbered or posted.
#pragma once

#include "import/import_filter.h"

namespace kalvor {

struct ImportTrialFailure {
  int row = 0;         // of the file, as the readers count: a text file's line, a table's row of data; 0: of no row
  QString field;       // its caption; empty: the whole record
  QString value;       // what did not go in; of a lookup its conditions
  QString reason;
  bool inLine = false; // of a detail line, not of the head
  bool fatal = true;   // the document would not be imported; else a message on the way
};

struct ImportTrialDocument {
  enum class Outcome : quint8 { Inserted, Updated, LinesAdded, Skipped, Failed };
  Outcome outcome = Outcome::Failed;
  int row = 0;                // where it begins
  QStringList head;           // by ImportTrial::headCaptions
  QList<QStringList> lines;   // by ImportTrial::lineCaptions
  QList<int> lineRows;        // of the file, as many as lines; 0: a line that was in the document before
  bool moreLines = false;     // only the first ones were tried
  QList<ImportTrialFailure> failures;
};

struct ImportTrial {
  QStringList headCaptions, lineCaptions;  // visible fields that any document has a value in
  QList<ImportTrialDocument> documents;
  bool moreDocuments = false;
  QString error;              // the trial could not begin, or broke off
};

// Tries the first documents of the file with a form of its own, which nobody sees. The user needs the right to add
// records, as for the import. Does not raise; shows nothing.
BASE_PACKAGE ImportTrial tryImport(int formId, const TImportFilter& filter, const QString& fileName, int mostDocuments = 10);

BASE_PACKAGE QString importOutcomeText(ImportTrialDocument::Outcome outcome);

}  // namespace kalvor
