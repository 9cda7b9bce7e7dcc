#include "platform/xlsx_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "data/data_error.h"
#include "platform/file_replacement.h"
#include "platform/xlsx_parts.h"

namespace kalvor {

namespace {

constexpr int xlsxRows = 1'048'576;
constexpr int xlsxColumns = 16'384;
constexpr size_t fullBuffer = 1 << 18;
// Above that there is room for one cell: 32,767 characters of at most 7 bytes each and what stands around them.
constexpr size_t roomForCell = 32'767 * 7 + 256;

char* putBytes(char* at, std::string_view text)
{
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
}

char* putWhole(char* at, qint64 value) { return std::to_chars(at, at + 24, value).ptr; }

// The shortest number that reads back equal.
char* putReal(char* at, double value)
{
  constexpr double exactWhole = 1e15;
  if (std::fabs(value) < exactWhole && value == std::trunc(value))
    return putWhole(at, qint64(value));
  return std::to_chars(at, at + 32, value).ptr;
}

std::string columnName(int column)
{
  std::string name;
  for (int rest = column + 1; rest > 0; rest = (rest - 1) / 26)
    name.insert(name.begin(), char('A' + (rest - 1) % 26));
  return name;
}

// As the file counts it: with the margins of a cell, by a font whose digits are seven pixels wide.
double storedWidth(double characters)
{
  constexpr double digitPixels = 7, marginPixels = 5, steps = 256, widest = 255;
  return std::floor((std::min(characters, widest - 1) * digitPixels + marginPixels) / digitPixels * steps) / steps;
}

// What the format keeps for characters that XML cannot hold: "_x000D_".
bool looksEscaped(QStringView text)
{
  const auto isHex = [](QChar c) { return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f'); };
  return text.size() >= 7 && text[1] == u'x' && text[6] == u'_' && std::all_of(text.begin() + 2, text.begin() + 6, isHex);
}

char* putEscaped(char* at, ushort character)
{
  static constexpr char digits[] = "0123456789ABCDEF";
  at = putBytes(at, "_x");
  for (int shift = 12; shift >= 0; shift -= 4)
    *at++ = digits[character >> shift & 0xF];
  *at++ = '_';
  return at;
}

char* putRarer(char* at, QStringView text, qsizetype& i)
{
  const char16_t c = text[i].unicode();
  switch (c) {
    case u'&': return putBytes(at, "&amp;");
    case u'<': return putBytes(at, "&lt;");
    case u'>': return putBytes(at, "&gt;");
    case u'_':
      if (looksEscaped(text.mid(i)))
        return putEscaped(at, c);
      [[fallthrough]];
    case u'\t':
    case u'\n': *at++ = char(c); return at;
    case 0:
    case 0xFFFE:
    case 0xFFFF: return at;  // has no place in XML, escaped or not
    default: break;
  }
  if (c < u' ')
    return putEscaped(at, c);
  char32_t code = c;
  if (QChar::isSurrogate(c)) {
    const bool isPair = QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    code = isPair ? QChar::surrogateToUcs4(c, text[++i].unicode()) : U'\uFFFD';
  }
  if (code >= 0x10000) {
    *at++ = char(0xF0 | code >> 18);
    *at++ = char(0x80 | (code >> 12 & 0x3F));
  } else {
    *at++ = char(0xE0 | code >> 12);
  }
  *at++ = char(0x80 | (code >> 6 & 0x3F));
  *at++ = char(0x80 | (code & 0x3F));
  return at;
}

char* putXmlText(char* at, QStringView text)
{
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t c = text[i].unicode();
    if (c >= 0x80 && c < 0x800) {
      *at++ = char(0xC0 | c >> 6);
      *at++ = char(0x80 | (c & 0x3F));
    } else if (c >= u' ' && c < 0x80 && c != u'&' && c != u'<' && c != u'>' && c != u'_') {
      *at++ = char(c);
    } else {
      at = putRarer(at, text, i);
    }
  }
  return at;
}

}  // namespace

XlsxWriter::XlsxWriter(const QString& fileName)
    : SpreadsheetWriter({xlsxRows, xlsxColumns}), target_(replacementTarget(fileName)), archive_(file_),
      buffer_(fullBuffer + roomForCell)
{
  file_.setFileTemplate(target_ + QStringLiteral(".XXXXXX"));
  if (!file_.open())
    fail(file_.errorString());
}

void XlsxWriter::fail(const QString& reason) const
{
  throw DataError(QStringLiteral("Файлът '%1' не може да бъде записан: %2").arg(target_, reason));
}

void XlsxWriter::check(bool written) const
{
  if (!written)
    fail(archive_.failure());
}

void XlsxWriter::flush()
{
  check(archive_.write(buffer_.data(), qsizetype(std::exchange(used_, 0))));
}

// --- Sheets ---------------------------------------------------------------------------------------------------

void XlsxWriter::writeSheet(const QString& name, const QList<SheetColumn>& columns)
{
  if (isFurtherSheet() && openRow_ != xlsxRows - 1)
    openRowElement(xlsxRows - 1);
  endSheet();
  if (sheetNames_.contains(name, Qt::CaseInsensitive))
    fail(QStringLiteral("листът '%1' не може да бъде добавен").arg(name));
  sheetNames_.append(name);
  check(archive_.beginPart(xlsxSheetPart(sheetNames_.size())));
  QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
                    "<sheetViews><sheetView workbookViewId=\"0\"";
  head += sheetNames_.size() == 1 ? " tabSelected=\"1\"/>" : "/>";
  head += "</sheetViews><sheetFormatPr defaultRowHeight=\"15\"/>";
  QByteArray widths;
  columnStyles_.assign(size_t(columns.size()), 0);
  columnNames_.clear();
  for (int i = 0; i < columns.size(); ++i) {
    const QByteArray number = QByteArray::number(i + 1);
    columnNames_.push_back(columnName(i));
    if (columns[i].width > 0)
      widths += "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" +
                QByteArray::number(storedWidth(columns[i].width), 'g', 10) + "\" customWidth=\"1\"/>";
    const QString& picture = columns[i].numberFormat;
    if (picture.isEmpty())
      continue;
    if (!numberPictures_.contains(picture))
      numberPictures_.append(picture);
    columnStyles_[size_t(i)] = xlsxFirstPictureStyle + int(numberPictures_.indexOf(picture));
  }
  if (!widths.isEmpty())
    head += "<cols>" + widths + "</cols>";
  head += "<sheetData>";
  check(archive_.write(head.constData(), head.size()));
}

void XlsxWriter::endSheet()
{
  if (sheetNames_.isEmpty())
    return;
  char* at = buffer_.data() + used_;
  if (openRow_ >= 0)
    at = putBytes(at, "</row>");
  openRow_ = -1;
  used_ = size_t(putBytes(at, "</sheetData></worksheet>") - buffer_.data());
  flush();
  check(archive_.endPart());
}

// --- Cells ----------------------------------------------------------------------------------------------------

int XlsxWriter::styleOf(int column, CellFormat format, SheetRowLook look) const
{
  switch (format) {
    case CellFormat::Date: return xlsxDateStyle;
    case CellFormat::DateTime: return xlsxDateTimeStyle;
    case CellFormat::Time: return xlsxTimeStyle;
    case CellFormat::Column:
      if (columnStyles_[size_t(column)] != 0)
        return columnStyles_[size_t(column)];
      break;
    case CellFormat::General: break;
  }
  return int(look);
}

void XlsxWriter::openRowElement(int row)
{
  char* at = buffer_.data() + used_;
  if (openRow_ >= 0)
    at = putBytes(at, "</row>");
  openRow_ = row;
  rowNumber_ = std::to_string(row + 1);
  used_ = size_t(putBytes(putBytes(putBytes(at, "<row r=\""), rowNumber_), "\">") - buffer_.data());
}

// Where the cell's type, if any, and the end of its start tag go.
char* XlsxWriter::beginCell(int row, int column, int style)
{
  if (used_ >= fullBuffer)
    flush();
  if (row != openRow_)
    openRowElement(row);
  char* at = buffer_.data() + used_;
  at = putBytes(putBytes(putBytes(at, "<c r=\""), columnNames_[size_t(column)]), rowNumber_);
  if (style != 0)
    at = putWhole(putBytes(at, "\" s=\""), style);
  return putBytes(at, "\"");
}

void XlsxWriter::writeText(int row, int column, QStringView value, SheetRowLook look)
{
  const bool keepBlanks = value.front().isSpace() || value.back().isSpace();
  char* at = putBytes(beginCell(row, column, int(look)), " t=\"inlineStr\"><is><t");
  at = putBytes(at, keepBlanks ? " xml:space=\"preserve\">" : ">");
  used_ = size_t(putBytes(putXmlText(at, value), "</t></is></c>") - buffer_.data());
}

void XlsxWriter::writeNumber(int row, int column, double value, CellFormat format, SheetRowLook look)
{
  char* at = putBytes(beginCell(row, column, styleOf(column, format, look)), "><v>");
  used_ = size_t(putBytes(putReal(at, value), "</v></c>") - buffer_.data());
}

void XlsxWriter::writeBoolean(int row, int column, bool value, SheetRowLook look)
{
  char* at = putBytes(beginCell(row, column, int(look)), " t=\"b\"><v>");
  *at++ = value ? '1' : '0';
  used_ = size_t(putBytes(at, "</v></c>") - buffer_.data());
}

// --- The file -------------------------------------------------------------------------------------------------

void XlsxWriter::finish()
{
  if (sheetNames_.isEmpty())
    writeSheet(QStringLiteral("Sheet"), {});
  endSheet();
  check(writeXlsxParts(archive_, sheetNames_, numberPictures_) && archive_.finish());
  if (!file_.flush())
    fail(file_.errorString());
  file_.close();
  QString reason;
  if (!replaceFile(file_, target_, reason))
    fail(reason);
}

}  // namespace kalvor
