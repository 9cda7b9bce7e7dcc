#include "common/export_text_cells.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "common/export_text.h"
#include "data/regional.h"
#include "forms/grid_view.h"
#include "platform/text_encoding.h"

namespace kalvor {

namespace {

constexpr int mostDecimals = 15;
constexpr size_t characterCount = 0x10000;

// What every character becomes: Windows-1251, or the DOS page behind it.
std::vector<char> characterCodes(bool dos)
{
  std::vector<char> codes(characterCount, '?');
  for (int code = 0; code < 256; ++code) {
    const QByteArray byte(1, char(code));
    const QString character = fromWindows1251(byte);
    if (character.size() == 1 && toWindows1251(character) == byte)
      codes[character[0].unicode()] = BDSTrans(byte, dos)[0];
  }
  return codes;
}

QString separatorOf(const ExportTextFormat& format)
{
  switch (format.delimiter) {
    case dtTab: return QStringLiteral("\t");
    case dtComma: return QStringLiteral(",");
    case dtSemiColon: return QStringLiteral(";");
    case dtChar: return format.symbol;
    case dtFixedLen: break;
  }
  return {};
}

// A separator of that name between the values would cut numbers in two.
char decimalPointBeside(const QString& separator)
{
  const char own = regionalFormat().decimalSeparator.toLatin1();
  if (!separator.contains(QLatin1Char(own)))
    return own;
  return own == ',' ? '.' : ',';
}

bool isRightAligned(const TField* field)
{
  return isNumericType(field->FieldDataType()) || isDateType(field->FieldDataType());
}

// The rounded value in units of the last decimal, where it is beyond doubt: far from a half, and exact.
bool roundedUnits(double magnitude, double scale, qint64& units)
{
  constexpr double exactHalves = 1e12;
  const double scaled = magnitude * scale;
  if (!(scaled < exactHalves))
    return false;
  const double whole = std::floor(scaled);
  const double fraction = scaled - whole;
  if (std::abs(fraction - 0.5) < 1e-3)
    return false;
  units = qint64(whole) + (fraction > 0.5);
  return true;
}

}  // namespace

ExportTextLines::ExportTextLines(const ExportTextFormat& format)
  : format_(format), codes_(characterCodes(format.dos)), decimalPoint_(decimalPointBeside(separatorOf(format)))
{
  format_.decimals = std::clamp(format_.decimals, 0, mostDecimals);
  const QString separator = separatorOf(format_);
  encode(separator);
  separator_ = std::exchange(bytes_, {});
}

void ExportTextLines::encode(QStringView text)
{
  const qsizetype start = bytes_.size();
  bytes_.resize(start + text.size());
  char* to = bytes_.data() + start;
  for (QChar character : text)
    *to++ = codes_[character.unicode()];
}

int ExportTextLines::widthOf(const TField* field)
{
  const auto [known, isNew] = widths_.try_emplace(field, 0);
  if (isNew)
    known->second = GetColSize(field);
  return known->second;
}

void ExportTextLines::beginCell()
{
  if (!std::exchange(firstCell_, false))
    bytes_.append(separator_);
  cellStart_ = bytes_.size();
}

void ExportTextLines::endCell(const TField* field)
{
  if (format_.delimiter != dtFixedLen)
    return;
  const qsizetype missing = widthOf(field) - (bytes_.size() - cellStart_);
  if (missing > 0)
    bytes_.insert(isRightAligned(field) ? cellStart_ : bytes_.size(), missing, ' ');
}

void ExportTextLines::endLine()
{
  bytes_.append("\r\n", 2);
}

void ExportTextLines::addCaption(const ExportColumn& column)
{
  beginCell();
  encode(column.field->DisplayLabel);
  endCell(column.field);
}

void ExportTextLines::appendReal(double value)
{
  static const auto powers = [] {
    std::array<double, mostDecimals + 1> list{};
    for (size_t i = 0; i < list.size(); ++i)
      list[i] = i == 0 ? 1.0 : list[i - 1] * 10.0;
    return list;
  }();
  qint64 units = 0;
  if (!roundedUnits(std::abs(value), powers[size_t(format_.decimals)], units)) {
    const QString mask = QStringLiteral("0.") + QString(format_.decimals, u'0');
    encode(formatNumber(value, mask).replace(regionalFormat().decimalSeparator, QLatin1Char(decimalPoint_)));
    return;
  }
  char digits[32];
  const auto end = std::to_chars(digits, std::end(digits), units).ptr;
  const qsizetype count = end - digits;
  if (value < 0 && units != 0)
    bytes_.append('-');
  const qsizetype decimals = format_.decimals;
  if (count > decimals) {
    bytes_.append(digits, count - decimals);
  } else {
    bytes_.append('0');
  }
  if (decimals == 0)
    return;
  bytes_.append(decimalPoint_);
  bytes_.append(std::max<qsizetype>(decimals - count, 0), '0');
  bytes_.append(end - std::min(count, decimals), std::min(count, decimals));
}

void ExportTextLines::appendDisplayText(const ExportColumn& column, ExportRow row)
{
  const TField* field = column.field;
  const bool plainDay = field->FieldDataType() == DataType::Date && column.column && row.stored >= 0;
  if (!plainDay || field->OnGetText) {
    encode(field->DisplayTextAt(row.row));
    return;
  }
  const qint64 day = column.column->integerAt(row.stored);
  const auto [known, isNew] = days_[field].try_emplace(day);
  if (isNew)
    known->second = field->FormatValue(QDate::fromJulianDay(day));
  encode(known->second);
}

void ExportTextLines::addValue(const ExportColumns& columns, qsizetype index, ExportRow row)
{
  const ExportColumn& source = columns[index];
  const DataType type = source.field->FieldDataType();
  const bool direct = source.column && row.stored >= 0;
  beginCell();
  if (direct && source.column->isNull(row.stored) && !(isDateType(type) && source.field->OnGetText)) {
    endCell(source.field);
    return;
  }
  if (isRealType(type)) {
    const Variant value = direct ? Variant() : source.field->ValueAt(row.row);
    if (direct || !isNull(value))
      appendReal(direct ? source.column->realAt(row.stored) : value.toDouble());
  } else if (isDateType(type)) {
    appendDisplayText(source, row);
  } else if (direct && isTextType(type)) {
    encode(source.column->textAt(row.stored));
  } else if (direct && isIntegerType(type)) {
    char digits[24];
    const auto end = std::to_chars(digits, std::end(digits), source.column->integerAt(row.stored)).ptr;
    bytes_.append(digits, end - digits);
  } else {
    encode(source.field->AsStringAt(row.row));
  }
  endCell(source.field);
}

}  // namespace kalvor
