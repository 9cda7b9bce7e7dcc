// Reads spreadsheet files back by other programs' eyes: .xls through FreeXL, .xlsx through zip and XML.
#pragma once

#include <QVariant>
#include <QXmlStreamReader>
#include <freexl.h>
#include <zip.h>

namespace kalvor::testing {

// Rows of cells; an empty cell is an invalid variant. Dates of .xls come as texts yyyy-MM-dd, those of .xlsx as numbers.
using SheetRows = QList<QVariantList>;
struct ReadSheet {
  QString name;
  SheetRows rows;
};

inline QVariant xlsValue(const FreeXL_CellValue& cell)
{
  switch (cell.type) {
    case FREEXL_CELL_INT: return cell.value.int_value;
    case FREEXL_CELL_DOUBLE: return cell.value.double_value;
    case FREEXL_CELL_NULL: return {};
    default: return QString::fromUtf8(cell.value.text_value);
  }
}

inline QList<ReadSheet> readXls(const QString& fileName)
{
  QList<ReadSheet> sheets;
  const void* file = nullptr;
  if (freexl_open(fileName.toUtf8().constData(), &file) != FREEXL_OK)
    return sheets;
  unsigned count = 0;
  freexl_get_info(file, FREEXL_BIFF_SHEET_COUNT, &count);
  for (unsigned short sheet = 0; sheet < count; ++sheet) {
    const char* name = nullptr;
    freexl_get_worksheet_name(file, sheet, &name);
    freexl_select_active_worksheet(file, sheet);
    unsigned rows = 0;
    unsigned short columns = 0;
    freexl_worksheet_dimensions(file, &rows, &columns);
    SheetRows read;
    for (unsigned row = 0; row < rows; ++row) {
      QVariantList cells;
      for (unsigned short column = 0; column < columns; ++column) {
        FreeXL_CellValue cell;
        cells.append(freexl_get_cell_value(file, row, column, &cell) == FREEXL_OK ? xlsValue(cell) : QVariant());
      }
      read.append(cells);
    }
    sheets.append({QString::fromUtf8(name), read});
  }
  freexl_close(file);
  return sheets;
}

inline QByteArray zipPart(const QString& fileName, const char* name)
{
  zip_t* archive = zip_open(fileName.toUtf8().constData(), ZIP_RDONLY, nullptr);
  zip_file_t* part = archive ? zip_fopen(archive, name, 0) : nullptr;
  QByteArray content;
  char block[4096];
  for (zip_int64_t got; part && (got = zip_fread(part, block, sizeof block)) > 0;)
    content.append(block, got);
  if (part)
    zip_fclose(part);
  if (archive)
    zip_discard(archive);
  return content;
}

inline SheetRows readXlsxSheet(const QString& fileName, int number)
{
  SheetRows rows;
  QXmlStreamReader xml(zipPart(fileName, qPrintable(QStringLiteral("xl/worksheets/sheet%1.xml").arg(number))));
  QString type, cell;
  while (!xml.atEnd()) {
    xml.readNext();
    if (!xml.isStartElement())
      continue;
    if (xml.name() == u"row") {
      rows.resize(xml.attributes().value(QStringLiteral("r")).toInt());
    } else if (xml.name() == u"c") {
      type = xml.attributes().value(QStringLiteral("t")).toString();
      cell = xml.attributes().value(QStringLiteral("r")).toString();
    } else if (xml.name() == u"f") {
      return {};  // no formula is ever written
    } else if (xml.name() == u"t" || xml.name() == u"v") {
      const QString text = xml.readElementText();
      QVariantList& row = rows.last();
      while (row.size() <= cell[0].unicode() - u'A')
        row.append(QVariant());
      row.last() = type == u"inlineStr" ? QVariant(text) : type == u"b" ? QVariant(text == u"1") : QVariant(text.toDouble());
    }
  }
  return xml.hasError() ? SheetRows() : rows;
}

}  // namespace kalvor::testing
