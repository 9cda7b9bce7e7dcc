#include "platform/xlsx_parts.h"

#include "platform/zip_writer.h"

namespace kalvor {

namespace {

constexpr const char* xmlHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
constexpr const char* contentTypeOf = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
const QByteArray openXml = QByteArrayLiteral("http://schemas.openxmlformats.org/");
constexpr int firstOwnNumberFormat = 164;

// By SheetRowLook.
constexpr const char* fontLooks[] = {"", "<b/>", "<b/><color rgb=\"FF0000FF\"/>", "<b/><color rgb=\"FF008000\"/>"};
constexpr const char* xlsxDatePictures[] = {"dd.mm.yyyy", "dd.mm.yyyy hh:mm:ss", "hh:mm:ss"};

QByteArray attributeText(QString text)
{
  text.removeIf([](QChar c) { return c.unicode() < u' ' || c.unicode() >= 0xFFFE; });
  return text.toHtmlEscaped().toUtf8();
}

QByteArray contentTypes(qsizetype sheets)
{
  QByteArray xml = QByteArray(xmlHead) + "<Types xmlns=\"" + openXml + "package/2006/content-types\">"
      "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
  const auto add = [&xml](const QByteArray& part, const char* kind) {
    xml += "<Override PartName=\"/" + part + "\" ContentType=\"" + contentTypeOf + kind + "+xml\"/>";
  };
  add("xl/workbook.xml", "sheet.main");
  add("xl/styles.xml", "styles");
  for (qsizetype sheet = 1; sheet <= sheets; ++sheet)
    add(xlsxSheetPart(sheet), "worksheet");
  return xml + "</Types>";
}

QByteArray relation(const QByteArray& id, const char* kind, const QByteArray& target)
{
  return "<Relationship Id=\"" + id + "\" Type=\"" + openXml + "officeDocument/2006/relationships/" +
         kind + "\" Target=\"" + target + "\"/>";
}

QByteArray relations(const QByteArray& entries)
{
  return QByteArray(xmlHead) + "<Relationships xmlns=\"" + openXml + "package/2006/relationships\">" +
         entries + "</Relationships>";
}

QByteArray workbookRelations(qsizetype sheets)
{
  QByteArray entries;
  for (qsizetype sheet = 1; sheet <= sheets; ++sheet)
    entries += relation("rId" + QByteArray::number(sheet), "worksheet", xlsxSheetPart(sheet).mid(3));
  return relations(entries + relation("rId" + QByteArray::number(sheets + 1), "styles", "styles.xml"));
}

QByteArray workbook(const QStringList& sheetNames)
{
  QByteArray xml = QByteArray(xmlHead) + "<workbook xmlns=\"" + openXml +
                   "spreadsheetml/2006/main\" xmlns:r=\"" + openXml + "officeDocument/2006/relationships\"><bookViews><workbookView/></bookViews><sheets>";
  for (qsizetype i = 0; i < sheetNames.size(); ++i) {
    const QByteArray number = QByteArray::number(i + 1);
    xml += "<sheet name=\"" + attributeText(sheetNames[i]) + "\" sheetId=\"" + number + "\" r:id=\"rId" + number + "\"/>";
  }
  return xml + "</sheets></workbook>";
}

QByteArray list(const char* name, const QByteArrayList& entries)
{
  return QByteArray("<") + name + " count=\"" + QByteArray::number(entries.size()) + "\">" + entries.join() + "</" + name + ">";
}

QByteArray cellStyle(int font, int numberFormat)
{
  return "<xf numFmtId=\"" + QByteArray::number(numberFormat) + "\" fontId=\"" + QByteArray::number(font) +
         "\" fillId=\"0\" borderId=\"0\" xfId=\"0\"" + (numberFormat ? " applyNumberFormat=\"1\"" : "") +
         (font ? " applyFont=\"1\"" : "") + "/>";
}

QByteArray styles(const QStringList& numberPictures)
{
  QByteArrayList pictures, fonts, cellStyles;
  for (const char* look : fontLooks) {
    cellStyles << cellStyle(int(fonts.size()), 0);
    fonts << QByteArray("<font>") + look + "<sz val=\"11\"/><name val=\"Calibri\"/><family val=\"2\"/></font>";
  }
  const auto addPicture = [&](const QByteArray& picture) {
    const int number = firstOwnNumberFormat + int(pictures.size());
    pictures << "<numFmt numFmtId=\"" + QByteArray::number(number) + "\" formatCode=\"" + picture + "\"/>";
    cellStyles << cellStyle(0, number);
  };
  for (const char* picture : xlsxDatePictures)
    addPicture(picture);
  for (const QString& picture : numberPictures)
    addPicture(attributeText(picture));
  return QByteArray(xmlHead) + "<styleSheet xmlns=\"" + openXml + "spreadsheetml/2006/main\">" +
         list("numFmts", pictures) + list("fonts", fonts) +
         list("fills", {"<fill><patternFill patternType=\"none\"/></fill>", "<fill><patternFill patternType=\"gray125\"/></fill>"}) +
         list("borders", {"<border><left/><right/><top/><bottom/><diagonal/></border>"}) +
         list("cellStyleXfs", {"<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/>"}) +
         list("cellXfs", cellStyles) +
         list("cellStyles", {"<cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/>"}) + "</styleSheet>";
}

}  // namespace

QByteArray xlsxSheetPart(qsizetype number)
{
  return "xl/worksheets/sheet" + QByteArray::number(number) + ".xml";
}

bool writeXlsxParts(ZipWriter& archive, const QStringList& sheetNames, const QStringList& numberPictures)
{
  return archive.addPart("xl/styles.xml", styles(numberPictures)) &&
         archive.addPart("xl/workbook.xml", workbook(sheetNames)) &&
         archive.addPart("xl/_rels/workbook.xml.rels", workbookRelations(sheetNames.size())) &&
         archive.addPart("_rels/.rels", relations(relation("rId1", "officeDocument", "xl/workbook.xml"))) &&
         archive.addPart("[Content_Types].xml", contentTypes(sheetNames.size()));
}

}  // namespace kalvor
