#include "platform/xls_reader.h"

#include <freexl.h>

#include <QFile>
#include <QFileInfo>

#include "data/data_error.h"

namespace kalvor {
namespace {

constexpr qint64 mostXlsBytes = 256 << 20;

void checkXls(int code)
{
  if (code != FREEXL_OK)
    throw DataError(QStringLiteral("Таблицата на MS Excel е повредена или защитена (%1).").arg(code));
}

class XlsWorkbook {
 public:
  explicit XlsWorkbook(const QString& fileName)
  {
    const int code = freexl_open(QFile::encodeName(fileName).constData(), &handle_);
    if (code != FREEXL_OK)
      freexl_close(handle_);
    checkXls(code);
  }
  ~XlsWorkbook() { freexl_close(handle_); }
  XlsWorkbook(const XlsWorkbook&) = delete;
  XlsWorkbook& operator=(const XlsWorkbook&) = delete;
  const void* handle() const { return handle_; }

 private:
  const void* handle_ = nullptr;
};

// The library writes dates as "2024-01-31", "2024-01-31 10:20:30" and "10:20:30".
QString xlsDateText(const QString& text, const CellTextFormat& format)
{
  const QDate date = QDate::fromString(text.left(10), Qt::ISODate);
  const QTime time = QTime::fromString(date.isValid() ? text.mid(11) : text, Qt::ISODate);
  if (!date.isValid() && !time.isValid())
    return text;
  return cellDateText(date, time.isValid() ? time : QTime(0, 0), format);
}

QString xlsCellText(const FreeXL_CellValue& cell, const CellTextFormat& format)
{
  switch (cell.type) {
    case FREEXL_CELL_INT: return QString::number(cell.value.int_value);
    case FREEXL_CELL_DOUBLE: return cellNumberText(cell.value.double_value, format);
    case FREEXL_CELL_TEXT: case FREEXL_CELL_SST_TEXT: return QString::fromUtf8(cell.value.text_value);
    case FREEXL_CELL_DATE: case FREEXL_CELL_DATETIME: case FREEXL_CELL_TIME:
      return xlsDateText(QString::fromUtf8(cell.value.text_value), format);
    default: return {};
  }
}

}  // namespace

TextTable readXls(const QString& fileName, const CellTextFormat& format)
{
  if (QFileInfo(fileName).size() > mostXlsBytes)
    throw DataError(QStringLiteral("Таблицата е твърде голяма."));
  const XlsWorkbook workbook(fileName);
  unsigned rows = 0;
  unsigned short columns = 0;
  checkXls(freexl_select_active_worksheet(workbook.handle(), 0));
  checkXls(freexl_worksheet_dimensions(workbook.handle(), &rows, &columns));
  TextTable table;
  for (unsigned row = 0; row < rows; ++row)
    for (unsigned short column = 0; column < columns; ++column) {
      FreeXL_CellValue cell;
      checkXls(freexl_get_cell_value(workbook.handle(), row, column, &cell));
      table.append(int(row), column, xlsCellText(cell, format));
    }
  return table;
}

}  // namespace kalvor
