#include "common/grid_export.h"

#include <QSaveFile>
#include <algorithm>

#include "data/data_error.h"
#include "platform/spreadsheet_writer.h"
#include "platform/text_encoding.h"

namespace kalvor {

namespace {

constexpr qsizetype widestGridColumn = 100;

QList<SheetColumn> fittedColumns(const StringTable& table, const QList<GridHeaderLine>& header)
{
  QList<qsizetype> lengths(std::max(table.ColCount(), header.isEmpty() ? 0 : 2), 0);
  const auto fit = [&](qsizetype column, const QString& text) {
    lengths[column] = std::max(lengths[column], std::min(text.size(), widestGridColumn));
  };
  for (const GridHeaderLine& line : header) {
    fit(0, line.name);
    fit(1, line.value);
  }
  for (int row = 0; row < table.RowCount(); ++row)
    for (int column = 0; column < table.ColCount(); ++column)
      fit(column, table.Cells(column, row));
  QList<SheetColumn> columns;
  for (qsizetype length : std::as_const(lengths))
    columns.append(SheetColumn{double(length) + 2, {}});
  return columns;
}

SheetRowLook lookOfRow(int row, int titleRows)
{
  if (row >= titleRows)
    return SheetRowLook::Plain;
  return row == 0 ? SheetRowLook::BoldBlue : SheetRowLook::BoldGreen;
}

}  // namespace

GridHeaderLine gridHeaderLine(const QString& line)
{
  const qsizetype sign = line.indexOf(u'=');
  return sign < 0 ? GridHeaderLine{line, {}} : GridHeaderLine{line.left(sign), line.mid(sign + 1)};
}

void writeGridSheet(const StringTable& table, int titleRows, const QStringList& headerLines, const QString& fileName)
{
  QList<GridHeaderLine> header;
  for (const QString& line : headerLines)
    header.append(gridHeaderLine(line));
  const std::unique_ptr<SpreadsheetWriter> sheet = SpreadsheetWriter::create(fileName);
  sheet->startSheet(QStringLiteral("Sheet1"), fittedColumns(table, header));
  for (const GridHeaderLine& line : std::as_const(header)) {
    sheet->beginRow();
    sheet->text(line.name);
    sheet->text(line.value);
  }
  if (!header.isEmpty())
    sheet->beginRow();
  for (int row = 0; row < table.RowCount(); ++row) {
    sheet->beginRow(lookOfRow(row, titleRows));
    for (int column = 0; column < table.ColCount(); ++column)
      sheet->text(table.Cells(column, row));
  }
  sheet->commit();
}

void writeGridText(const StringTable& table, const QStringList& headerLines, const QString& fileName)
{
  QString text;
  for (const QString& line : headerLines) {
    const GridHeaderLine header = gridHeaderLine(line);
    text += header.name + u'\t' + header.value + QLatin1String("\r\n");
  }
  for (int row = 0; row < table.RowCount(); ++row) {
    for (int column = 0; column < table.ColCount(); ++column)
      text += table.Cells(column, row) + u'\t';
    text += QLatin1String("\r\n");
  }
  const QByteArray bytes = toWindows1251(text);
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(fileName, file.errorString()));
}

}  // namespace kalvor
