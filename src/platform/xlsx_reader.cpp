#include "platform/xlsx_reader.h"

#include <QXmlStreamReader>
#include <algorithm>

#include "data/data_error.h"
#include "platform/continued_sheets.h"
#include "platform/xlsx_workbook.h"

namespace kalvor {
namespace {

constexpr int rowsOfXlsxSheet = 1 << 20;

[[noreturn]] void refuseSheet(const QString& where)
{
  throw DataError(QStringLiteral("Таблицата на MS Excel е повредена при клетка ") + where);
}

// "BC12" is column 54 (from 0); -1 without letters or with too many.
int columnOfReference(QStringView reference)
{
  int column = 0;
  for (const QChar letter : reference) {
    if (letter < u'A' || letter > u'Z')
      break;
    column = column * 26 + (letter.unicode() - u'A' + 1);
    if (column > TextTable::mostColumns)
      return -1;
  }
  return column - 1;
}

class XlsxSheets {
 public:
  XlsxSheets(const XlsxWorkbook& workbook, const CellTextFormat& format) : workbook_(workbook), format_(format) {}

  TextTable read(const ZipArchive& archive)
  {
    const QList<XlsxWorkbook::Sheet>& sheets = workbook_.sheets;
    qsizetype sheet = 0;
    do
      readSheet(archive, sheets[sheet++].part);
    while (sheet < sheets.size() && row_ == rowsOfXlsxSheet - 1 &&
           table_.goesOn(rowsOfXlsxSheet, sheets.first().name, sheets[sheet].name));
    return table_.take();
  }

 private:
  void readSheet(const ZipArchive& archive, const QString& part)
  {
    const auto stream = archive.open(part);
    if (!stream)
      throw DataError(QStringLiteral("Файлът не съдържа лист с данни."));
    row_ = -1;
    QXmlStreamReader xml(stream.get());
    while (nextXlsxElement(xml, *stream)) {
      if (xml.name() == u"row")
        startRow(xml);
      else if (xml.name() == u"c")
        readCell(xml);
    }
  }

  void startRow(const QXmlStreamReader& xml)
  {
    const QString number = xlsxAttribute(xml, u"r");
    row_ = number.isEmpty() ? row_ + 1 : number.toInt() - 1;
    column_ = -1;
    if (row_ < 0 || row_ >= rowsOfXlsxSheet)
      refuseSheet(number);
  }

  void readCell(QXmlStreamReader& xml)
  {
    const QString reference = xlsxAttribute(xml, u"r");
    const QString type = xlsxAttribute(xml, u"t");
    const int style = xlsxAttribute(xml, u"s").toInt();
    column_ = reference.isEmpty() ? column_ + 1 : columnOfReference(reference);
    QString value;
    for (int depth = 1; depth > 0 && !xml.atEnd();) {
      const QXmlStreamReader::TokenType token = xml.readNext();
      depth += token == QXmlStreamReader::StartElement ? 1 : token == QXmlStreamReader::EndElement ? -1 : 0;
      if (token != QXmlStreamReader::StartElement)
        continue;
      if (xml.name() == u"v")
        value = xml.readElementText(QXmlStreamReader::SkipChildElements);
      else if (xml.name() == u"is")
        value = xlsxText(xml);
      else
        continue;
      --depth;
    }
    if (column_ < 0 || !table_.append(row_, column_, cellText(value, type, style, reference)))
      refuseSheet(reference);
  }

  QString cellText(const QString& value, const QString& type, int style, const QString& reference) const
  {
    if (value.isEmpty() || type == u"e")
      return {};
    bool isNumber = false;
    if (type == u"s") {
      const int index = value.toInt(&isNumber);
      return isNumber && index >= 0 && index < workbook_.sharedTexts.size() ? workbook_.sharedTexts[index]
                                                                            : (refuseSheet(reference), QString());
    }
    if (type == u"str" || type == u"inlineStr")
      return value;
    if (type == u"d")
      return isoDateText(value);
    const double number = value.toDouble(&isNumber);
    if (!isNumber)
      refuseSheet(reference);
    const CellNumberKind kind = style >= 0 && size_t(style) < workbook_.styles.size() ? workbook_.styles[size_t(style)]
                                                                                     : CellNumberKind::Number;
    return type == u"b" ? cellNumberText(number, format_) : cellSerialText(number, kind, workbook_.epoch, format_);
  }

  QString isoDateText(const QString& value) const
  {
    const QDateTime when = QDateTime::fromString(value, Qt::ISODateWithMs);
    return when.isValid() ? cellDateText(when.date(), when.time(), format_) : value;
  }

  const XlsxWorkbook& workbook_;
  const CellTextFormat& format_;
  ContinuedSheets table_;
  int row_ = -1;
  int column_ = -1;
};

}  // namespace

TextTable readXlsx(const QString& fileName, const CellTextFormat& format)
{
  const ZipArchive archive(fileName);
  const XlsxWorkbook workbook = readXlsxWorkbook(archive);
  return XlsxSheets(workbook, format).read(archive);
}

}  // namespace kalvor
