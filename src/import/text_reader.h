// Documents of a text file, delimited or of fixed width. Files are UTF-8 or else Windows-1251 (platform/line_reader.h).
#pragma once

#include "import/import_reader.h"
#include "import/text_columns.h"
#include "platform/line_reader.h"

namespace kalvor {

// The file is read line by line from FIRST_ROW on. Rows that are handed in are lines in the encoding of the file.
class KALVOR_RULES TImportTxt : public TImportBase {
 public:
  // TImportException _err_OpenFile when the file cannot be opened.
  TImportTxt(const QString& fileName, const TImportFilter& filter, const ImportServices& services);
  ~TImportTxt() override;

  int ReadRecord(TImportLine& master, TImportSet& details, QString& error) override;
  // The rows that start a document. Goes back to the first data line.
  int GetRecordCount() override;

  // The separator counts for dtChar only.
  void SetDelimiter(TDelimiter kind, const QString& separator = {});
  QString GetValueAtPos(QByteArrayView row, int position);
  // Remembers the row's break values.
  bool IsNewMasterLine(QByteArrayView row);
  // Appends cells; 0, or -1 when a lookup failed and the row is not to be skipped.
  int FillImportLine(QByteArrayView row, const ImportEntries& fields, TImportLine& line);

 protected:
  QString textAt(int position) const override;

 private:
  bool startsDocument();
  void setFixedRanges();
  void goToFirstRow();
  bool takeFirstLine();
  bool takeNextLine();
  bool isAtEnd();
  bool readDocument(TImportLine& master, TImportSet& details);
  bool appendDetail(TImportSet& details);

  mutable TextColumns columns_;
  LineReader lines_;
  TDelimiter delimiter_ = dtChar;
  int firstRow_ = 1;
  QByteArrayView current_;  // the line whose columns are asked for
  QByteArray pending_;      // the first line of the next document; empty: none
  QByteArray firstLine_;    // the pending line while its document is read
};

}  // namespace kalvor
