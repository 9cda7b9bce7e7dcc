#include "platform/xls_writer.h"

#include <QtEndian>
#include <cmath>
#include <cstring>

#include "data/data_error.h"
#include "platform/biff_records.h"
#include "platform/compound_file_writer.h"
#include "platform/file_replacement.h"

namespace kalvor {

namespace {

using biff::Record;

constexpr int xlsRows = 65'536;
constexpr int xlsColumns = 256;

// Kinds of records.
enum : quint16 {
  brBof = 0x0809, brEof = 0x000A, brCodePage = 0x0042, brWindow1 = 0x003D, brFont = 0x0031, brFormat = 0x041E,
  brXf = 0x00E0, brStyle = 0x0293, brBoundSheet = 0x0085, brDimension = 0x0200, brColInfo = 0x007D, brWindow2 = 0x023E,
  brLabelSst = 0x00FD, brNumber = 0x0203, brRk = 0x027E, brBoolErr = 0x0205
};

constexpr quint16 firstOwnPicture = 164;
constexpr quint16 firstCellLook = 15;    // fifteen looks of styles stand before those of cells
constexpr qsizetype cellHead = 10;       // kind, length, row, column, look

struct FontRow {
  quint16 weight;
  quint16 color;  // of the standard palette; 0x7FFF = the window's text
};
// The formats counts fonts without a fourth: the font after the fourth is number five.
constexpr FontRow fontRows[] = {{400, 0x7FFF}, {400, 0x7FFF}, {400, 0x7FFF}, {400, 0x7FFF},
                                {700, 0x7FFF}, {700, 0x000C}, {700, 0x0011}};
constexpr quint16 fontOfLook[] = {0, 5, 6, 7};
constexpr const char16_t* datePictures[] = {u"dd\\.mm\\.yyyy", u"dd\\.mm\\.yyyy\\ hh:mm:ss", u"hh:mm:ss"};
constexpr size_t plainLooks = std::size(fontOfLook);

void beginStream(QByteArray& stream, quint16 kind)
{
  constexpr quint16 version = 0x0600, build = 0x0DBB, year = 1996;
  Record(brBof).u16(version).u16(kind).u16(build).u16(year).u32(0x41).u32(0x06).appendTo(stream);
}

void putXf(QByteArray& stream, quint16 font, quint16 picture, bool style)
{
  constexpr quint16 styleWithoutParent = 0xFFF5, lockedCell = 0x0001;
  constexpr quint8 bottom = 0x20;
  const quint8 own = style ? 0xF4 : 0x0C;  // a cell brings its own number format and font
  Record(brXf).u16(font).u16(picture).u16(style ? styleWithoutParent : lockedCell).u8(bottom).u8(0).u8(0).u8(own)
      .u32(0).u32(0).u16(0x20C0).appendTo(stream);
}

void putWindow(QByteArray& stream)
{
  Record(brWindow1).u16(0x0168).u16(0x010E).u16(0x5C3A).u16(0x23BE).u16(0x0038).u16(0).u16(0).u16(1).u16(0x0258)
      .appendTo(stream);
}

void putFonts(QByteArray& stream)
{
  constexpr quint16 tenPoints = 200;
  for (const FontRow& font : fontRows)
    Record(brFont).u16(tenPoints).u16(0).u16(font.color).u16(font.weight).u16(0).u8(0).u8(0).u8(204).u8(0)
        .text8(u"Arial").appendTo(stream);
}

// A whole number of thirty bits in four bytes.
bool packed(double value, quint32& bits)
{
  constexpr double least = -(1 << 29), most = (1 << 29) - 1;
  if (value < least || value > most || value != std::floor(value) || (value == 0 && std::signbit(value)))
    return false;
  bits = (quint32(qint32(value)) << 2) | 2;
  return true;
}

}  // namespace

XlsWriter::XlsWriter(const QString& fileName) : SpreadsheetWriter({xlsRows, xlsColumns})
{
  file_.setFileName(replacementTarget(fileName));
  if (!file_.open(QIODevice::WriteOnly))
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде създаден: %2").arg(fileName, file_.errorString()));
  for (quint16 font : fontOfLook)
    looks_.push_back({font, 0});
  for (const char16_t* picture : datePictures)
    looks_.push_back({0, pictureNumber(QString::fromUtf16(picture))});
}

// --- Looks ----------------------------------------------------------------------------------------------------

quint16 XlsWriter::pictureNumber(const QString& picture)
{
  qsizetype index = pictures_.indexOf(picture);
  if (index < 0) {
    index = pictures_.size();
    pictures_.append(picture);
  }
  return quint16(firstOwnPicture + index);
}

quint16 XlsWriter::cellLook(CellLook wanted)
{
  const auto known = std::find(looks_.begin(), looks_.end(), wanted);
  const auto index = known - looks_.begin();
  if (known == looks_.end())
    looks_.push_back(wanted);
  return quint16(firstCellLook + index);
}

quint16 XlsWriter::formatOf(int column, CellFormat format, SheetRowLook look) const
{
  switch (format) {
    case CellFormat::Column:
      if (columnLooks_[size_t(column)] != 0)
        return columnLooks_[size_t(column)];
      break;
    case CellFormat::Date:
    case CellFormat::DateTime:
    case CellFormat::Time:
      return quint16(firstCellLook + plainLooks + size_t(format) - size_t(CellFormat::Date));
    case CellFormat::General: break;
  }
  return quint16(firstCellLook + size_t(look));
}

// --- Cells ----------------------------------------------------------------------------------------------------

void XlsWriter::writeSheet(const QString& name, const QList<SheetColumn>& columns)
{
  if (isFurtherSheet())
    sheets_.back().rows = xlsRows;
  sheets_.push_back({name, columns, {}, 0});
  columnLooks_.assign(size_t(columns.size()), 0);
  for (qsizetype i = 0; i < columns.size(); ++i)
    if (!columns[i].numberFormat.isEmpty())
      columnLooks_[size_t(i)] = cellLook({0, pictureNumber(columns[i].numberFormat)});
}

void XlsWriter::putCell(quint16 kind, int row, int column, quint16 look, const void* body, qsizetype size)
{
  Sheet& sheet = sheets_.back();
  char cell[cellHead + 8];
  const quint16 head[] = {kind, quint16(size + 6), quint16(row), quint16(column), look};
  for (size_t i = 0; i < std::size(head); ++i)
    qToLittleEndian(head[i], cell + 2 * i);
  std::memcpy(cell + cellHead, body, size_t(size));
  sheet.cells.append(cell, cellHead + size);
  sheet.rows = row + 1;
}

quint32 XlsWriter::sharedText(QStringView text)
{
  ++textUses_;
  key_.setRawData(text.data(), text.size());
  const auto known = textNumbers_.constFind(key_);
  if (known != textNumbers_.constEnd())
    return *known;
  const QString own = text.toString();
  const quint32 number = quint32(texts_.size());
  texts_.append(own);
  textNumbers_.insert(own, number);
  return number;
}

void XlsWriter::writeText(int row, int column, QStringView value, SheetRowLook look)
{
  const quint32 number = qToLittleEndian(sharedText(value));
  putCell(brLabelSst, row, column, formatOf(column, CellFormat::General, look), &number, sizeof number);
}

void XlsWriter::writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look)
{
  const quint16 cellFormat = formatOf(column, format, look);
  quint32 bits = 0;
  if (packed(value, bits)) {
    bits = qToLittleEndian(bits);
    putCell(brRk, row, column, cellFormat, &bits, sizeof bits);
  } else {
    const double stored = qToLittleEndian(value);
    putCell(brNumber, row, column, cellFormat, &stored, sizeof stored);
  }
}

void XlsWriter::writeBoolean(int row, int column, bool value, SheetRowLook look)
{
  const char body[] = {char(value), 0};
  putCell(brBoolErr, row, column, formatOf(column, CellFormat::General, look), body, sizeof body);
}

// --- The file -------------------------------------------------------------------------------------------------

QByteArray XlsWriter::globals(QList<qsizetype>& offsetPlaces) const
{
  QByteArray stream;
  beginStream(stream, 0x0005);
  Record(brCodePage).u16(1200).appendTo(stream);
  putWindow(stream);
  putFonts(stream);
  for (qsizetype i = 0; i < pictures_.size(); ++i)
    Record(brFormat).u16(quint16(firstOwnPicture + i)).text16(pictures_[i]).appendTo(stream);
  for (int i = 0; i < firstCellLook; ++i)
    putXf(stream, 0, 0, true);
  for (const CellLook& look : looks_)
    putXf(stream, look.font, look.picture, false);
  Record(brStyle).u16(0x8000).u8(0).u8(0xFF).appendTo(stream);
  for (const Sheet& sheet : sheets_) {
    offsetPlaces.append(stream.size() + 4);
    Record(brBoundSheet).u32(0).u16(0).text8(sheet.name).appendTo(stream);
  }
  stream.append(biff::sharedTexts(texts_, textUses_));
  Record(brEof).appendTo(stream);
  return stream;
}

QByteArray XlsWriter::sheetHead(const Sheet& sheet)
{
  QByteArray stream;
  beginStream(stream, 0x0010);
  for (qsizetype i = 0; i < sheet.columns.size(); ++i)
    if (sheet.columns[i].width > 0)
      Record(brColInfo).u16(quint16(i)).u16(quint16(i)).u16(quint16(std::min(sheet.columns[i].width, 255.0) * 256))
          .u16(firstCellLook).u16(0).u16(0).appendTo(stream);
  Record(brDimension).u32(0).u32(quint32(sheet.rows)).u16(0).u16(quint16(sheet.columns.size())).u16(0).appendTo(stream);
  return stream;
}

QByteArray XlsWriter::sheetEnd(bool first)
{
  QByteArray stream;
  Record(brWindow2).u16(first ? 0x06B6 : 0x00B6).u16(0).u16(0).u32(0x40).u16(0).u16(0).u32(0).appendTo(stream);
  Record(brEof).appendTo(stream);
  return stream;
}

void XlsWriter::finish()
{
  QList<qsizetype> offsetPlaces;
  QByteArrayList parts{globals(offsetPlaces)};
  qint64 offset = parts.first().size();
  for (size_t i = 0; i < sheets_.size(); ++i) {
    qToLittleEndian(quint32(offset), parts.first().data() + offsetPlaces[qsizetype(i)]);
    const qsizetype before = parts.size();
    parts << sheetHead(sheets_[i]) << std::exchange(sheets_[i].cells, {}) << sheetEnd(i == 0);
    for (qsizetype part = before; part < parts.size(); ++part)
      offset += parts[part].size();
  }
  const bool written = writeCompoundFile(file_, u"Workbook", parts);
  if (!written || !file_.commit())
    throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(file_.fileName(), file_.errorString()));
}

}  // namespace kalvor
