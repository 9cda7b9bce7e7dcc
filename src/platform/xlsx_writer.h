// Spreadsheet files as zipped XML (ECMA-376), written as a stream: the rows go from a buffer through the packer into
// the file, so that memory does not grow with them. Texts stand in their cells.
#pragma once

#include <QTemporaryFile>
#include <string>
#include <vector>

#include "platform/spreadsheet_writer.h"
#include "platform/zip_writer.h"

namespace kalvor {

class XlsxWriter final : public SpreadsheetWriter {
 public:
  explicit XlsxWriter(const QString& fileName);

 protected:
  void writeSheet(const QString& name, const QList<SheetColumn>& columns) override;
  void writeText(int row, int column, QStringView value, SheetRowLook look) override;
  void writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look) override;
  void writeBoolean(int row, int column, bool value, SheetRowLook look) override;
  void finish() override;

 private:
  [[noreturn]] void fail(const QString& reason) const;
  void check(bool written) const;
  int styleOf(int column, CellFormat format, SheetRowLook look) const;
  void openRowElement(int row);
  char* beginCell(int row, int column, int style);
  void endSheet();
  void flush();

  QString target_;
  QTemporaryFile file_;
  ZipWriter archive_;
  QStringList sheetNames_;
  QStringList numberPictures_;
  std::vector<int> columnStyles_;      // of real numbers; 0 = none of their own
  std::vector<std::string> columnNames_;
  std::vector<char> buffer_;
  size_t used_ = 0;
  int openRow_ = -1;  // whose element is open; -1 = none
  std::string rowNumber_;
};

}  // namespace kalvor
