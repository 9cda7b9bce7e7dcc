#include "platform/spreadsheet_writer.h"

#include <cmath>

#include "data/data_error.h"
#include "data/regional.h"
#include "platform/continued_sheets.h"
#include "platform/xls_writer.h"
#include "platform/xlsx_writer.h"

namespace kalvor {

namespace {

constexpr qsizetype longestCellText = 32767;
constexpr qint64 exactIntegers = 1'000'000'000'000'000;  // 15 digits
const QDate firstSheetDay(1900, 3, 1);  // the days before it are numbered as if 1900 were a leap year
const QDate sheetDayZero(1899, 12, 30);
constexpr double millisecondsOfDay = 86'400'000;

bool isSheetDay(QDate day)
{
  return day >= firstSheetDay && day.year() <= 9999;
}

}  // namespace

SpreadsheetWriter::~SpreadsheetWriter() = default;

std::unique_ptr<SpreadsheetWriter> SpreadsheetWriter::create(const QString& fileName)
{
  if (fileName.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive))
    return std::make_unique<XlsxWriter>(fileName);
  return std::make_unique<XlsWriter>(fileName);
}

void SpreadsheetWriter::startSheet(const QString& name, const QList<SheetColumn>& columns)
{
  if (columns.size() > limits_.columns)
    throw DataError(QStringLiteral("Колоните са %1, а файлът побира най-много %2").arg(columns.size())
                        .arg(limits_.columns));
  name_ = name;
  columns_ = columns;
  titles_.clear();
  sheets_ = 0;
  openSheet();
}

void SpreadsheetWriter::openSheet()
{
  ++sheets_;
  row_ = -1;
  writeSheet(continuedSheetName(name_, sheets_), columns_);
  for (const TitleRow& title : std::as_const(titles_)) {
    nextRow();
    for (const QString& cell : title.texts)
      if (const int column = nextColumn(); !cell.isEmpty())
        writeText(row_, column, cell, title.look);
  }
}

void SpreadsheetWriter::nextRow()
{
  ++row_;
  column_ = 0;
}

int SpreadsheetWriter::nextColumn()
{
  if (column_ == columns_.size())
    throw DataError(QStringLiteral("Клетките на ред са повече от колоните (%1)").arg(columns_.size()));
  return column_++;
}

void SpreadsheetWriter::addTitleRow(const QStringList& texts, SheetRowLook look)
{
  beginRow(look);
  for (const QString& cell : texts)
    text(cell);
  titles_.append({texts, look});
}

void SpreadsheetWriter::beginRow(SheetRowLook look)
{
  if (row_ + 1 == limits_.rows)
    openSheet();
  nextRow();
  look_ = look;
}

// --- Cells ----------------------------------------------------------------------------------------------------

void SpreadsheetWriter::text(QStringView value)
{
  if (value.size() > longestCellText)
    throw DataError(QStringLiteral("Ред %1: текст от %2 знака не се побира в клетка (най-много %3)")
                        .arg(row_ + 1).arg(value.size()).arg(longestCellText));
  const int column = nextColumn();
  if (!value.isEmpty())
    writeText(row_, column, value, look_);
}

void SpreadsheetWriter::number(double value)
{
  const int column = nextColumn();
  if (std::isfinite(value))
    writeNumber(row_, column, value, CellFormat::Column, look_);
}

void SpreadsheetWriter::integer(qint64 value)
{
  if (value >= exactIntegers || value <= -exactIntegers)
    text(QString::number(value));
  else
    writeNumber(row_, nextColumn(), double(value), CellFormat::General, look_);
}

void SpreadsheetWriter::date(QDate value)
{
  if (isSheetDay(value))
    writeNumber(row_, nextColumn(), double(sheetDayZero.daysTo(value)), CellFormat::Date, look_);
  else
    text(dateText(value));
}

void SpreadsheetWriter::dateTime(const QDateTime& value)
{
  if (isSheetDay(value.date()))
    writeNumber(row_, nextColumn(), double(sheetDayZero.daysTo(value.date())) +
                                        value.time().msecsSinceStartOfDay() / millisecondsOfDay,
                CellFormat::DateTime, look_);
  else
    text(dateTimeText(value));
}

void SpreadsheetWriter::time(QTime value)
{
  if (value.isValid())
    writeNumber(row_, nextColumn(), value.msecsSinceStartOfDay() / millisecondsOfDay, CellFormat::Time, look_);
  else
    empty();
}

void SpreadsheetWriter::boolean(bool value)
{
  writeBoolean(row_, nextColumn(), value, look_);
}

void SpreadsheetWriter::empty()
{
  nextColumn();
}

void SpreadsheetWriter::commit()
{
  finish();
}

}  // namespace kalvor
