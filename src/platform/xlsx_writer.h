// Spreadsheet files as zipped XML, by libxlsxwriter, a row at a time.
#pragma once

#include <QTemporaryFile>
#include <array>
#include <vector>

#include "platform/spreadsheet_writer.h"

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

namespace kalvor {

class XlsxWriter final : public SpreadsheetWriter {
 public:
  explicit XlsxWriter(const QString& fileName);
  ~XlsxWriter() override;

 protected:
  void writeSheet(const QString& name, const QList<SheetColumn>& columns) override;
  void writeText(int row, int column, QStringView value, SheetRowLook look) override;
  void writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look) override;
  void writeBoolean(int row, int column, bool value, SheetRowLook look) override;
  void finish() override;

 private:
  void check(int error) const;
  [[noreturn]] void fail(const QString& reason) const;
  void checkRowsWritten() const;
  void checkComplete() const;
  lxw_format* formatOf(int column, CellFormat format, SheetRowLook look) const;
  lxw_format* numberFormat(const QString& picture);

  QString target_;
  QTemporaryFile file_;
  QByteArray path_;
  lxw_workbook* workbook_ = nullptr;
  lxw_worksheet* sheet_ = nullptr;
  std::vector<lxw_worksheet*> sheets_;
  std::array<lxw_format*, 4> looks_{};
  std::array<lxw_format*, 3> dates_{};
  std::vector<lxw_format*> columnFormats_;
  std::string utf8_;
};

}  // namespace kalvor
