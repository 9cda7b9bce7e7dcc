// The first rows of a data file as an import filter numbers their columns, whether or not the filter describes them.
#pragma once

#include "import/import_filter.h"

namespace kalvor {

struct ImportSample {
  enum class Source : quint8 { Text, Sheet, Xml };
  Source source = Source::Text;
  QStringList headings;    // a sheet's first row; else empty
  QList<QStringList> rows; // as wide as they are in the file; column 1 is at index 0
  int firstRowNumber = 1;  // the number of rows.first(), as an import tells of it
  int columnCount = 0;
  QString encoding;        // "UTF-8" or "Windows-1251"; of a text file
  QString delimiter;       // the value of TXTFILE_SEP by which the columns are cut; of a text file, may be empty
  bool delimiterFound = false;  // found in the file, because the filter names none that it has
  bool moreRows = false;
  QString error;           // why it could not be read, in Bulgarian; then there are no rows
};

// Fixed-width columns are those that the filter has ranges for; the whole row stands behind them. Nothing is raised.
KALVOR_RULES ImportSample readImportSample(const QString& fileName, const TImportFilter& filter, int mostRows = 50);

// The TXTFILE_SEP value whose sign cuts these lines most evenly; empty when none occurs.
KALVOR_RULES QString likelyDelimiter(const QStringList& lines);

}  // namespace kalvor
