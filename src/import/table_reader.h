// Documents of a table: of a spreadsheet's first sheet, or of an XML file that a transformation makes one of.
#pragma once

#include <QHash>

#include "import/import_reader.h"
#include "platform/text_table.h"

namespace kalvor {

// Reads the table that a descendant opens; without one it is not open.
class KALVOR_RULES TImportDS : public TImportBase {
 public:
  TImportDS(const QString& fileName, const TImportFilter& filter, const ImportServices& services);
  ~TImportDS() override;

  int ReadRecord(TImportLine& master, TImportSet& details, QString& error) override;
  int GetRecordCount() override;

  // Of the current row; remembers its break values.
  bool IsNewMasterLine();
  // Appends cells of the current row; 0, or -1 when a lookup failed and the row is not to be skipped.
  int FillImportLine(const ImportEntries& fields, TImportLine& line);

 protected:
  QString textAt(int position) const override;
  int currentRowNumber() const override { return currentRow_ + 1; }
  // The rows from firstRow (from 0) on are the data.
  void openTable(TextTable&& table, int firstRow);

 private:
  bool readDocument(TImportLine& master, TImportSet& details);
  void advance();
  bool appendDetail(TImportSet& details);

  TextTable table_;
  QHash<int, QString> missing_;  // what a named position holds when the table has no such column
  int firstRow_ = 0;
  int rowCount_ = 0;
  int nextRow_ = 0;     // the table's own current row, from 0
  int currentRow_ = 0;  // whose columns are asked for
};

class KALVOR_RULES TImportXLS : public TImportDS {
 public:
  TImportXLS(const QString& fileName, const TImportFilter& filter, const ImportServices& services);
};

class KALVOR_RULES TImportXML : public TImportDS {
 public:
  TImportXML(const QString& fileName, const TImportFilter& filter, const ImportServices& services);
};

}  // namespace kalvor
