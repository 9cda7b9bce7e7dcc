// Readers of import files: one document a call, its master line and its detail lines.
#pragma once

#include <memory>

#include "import/import_fields.h"

namespace kalvor {

class KALVOR_RULES TImportBase {
 public:
  // The filter must live longer than the reader.
  TImportBase(const QString& fileName, const TImportFilter& filter, const ImportServices& services);
  virtual ~TImportBase();
  TImportBase(const TImportBase&) = delete;
  TImportBase& operator=(const TImportBase&) = delete;

  // 0: a document was read (a line without cells stays empty); -1: the end, or an error whose text says why. The lines
  // are filled anew; at the end they are left alone.
  virtual int ReadRecord(TImportLine& master, TImportSet& details, QString& error);
  // An estimate for the progress bar. The import run calls it once, before the first record.
  virtual int GetRecordCount();

  const QString& fileName() const { return fileName_; }
  bool isEndOfData() const { return endOfData_; }
  bool isOpened() const { return opened_; }
  int importAction() const { return importAction_; }  // IMPORT_ACTION
  int rowCounter() const { return rowCounter_; }      // one above the number of the row read last

 protected:
  struct DocumentBreak {
    int position = 0;
    QByteArray lastValue;  // in the reader's own encoding
  };

  // The text of a column of the current row; empty where the row has none.
  virtual QString textAt(int position) const;
  // The row that the columns are asked of, from 1: a text file's line, a table's row of data.
  virtual int currentRowNumber() const;
  // Appends the cells of the current row. -1: a lookup failed. With SKIP_INVALID_ROWS the line then stays as it was, 0.
  int fillLine(const QList<ImportField>& fields, int rowNumber, TImportLine& line);
  // The fields of the list; read once for the two lists of the filter.
  QList<ImportField> fieldsOf(const ImportEntries& entries) const;
  // -1, with the message in the import error log and, behind the row's number, in the error text.
  int failRecord(const QString& message, int rowNumber, const QString& routine, QString& error) const;

  QString fileName_;
  const TImportFilter& filter_;
  ImportServices services_;
  QList<DocumentBreak> breaks_;
  QList<ImportField> masterFields_;
  QList<ImportField> detailFields_;
  int importAction_ = 0;
  int rowCounter_ = 0;
  bool endOfData_ = false;
  bool opened_ = false;

 private:
  bool fillLookup(const ImportLookup& lookup, int rowNumber, TImportLine& line);

  QList<ImportLookup> fallbacks_;
};

// The reader for the file: by its extension .xls and .xlsx TImportXLS, .xml TImportXML, any other TImportTxt.
// TImportException when a text file cannot be opened.
KALVOR_RULES std::unique_ptr<TImportBase> createImportReader(const QString& fileName, const TImportFilter& filter,
                                                             const ImportServices& services);

}  // namespace kalvor
