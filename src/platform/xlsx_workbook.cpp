#include "platform/xlsx_workbook.h"

#include <QDir>
#include <QHash>
#include <QXmlStreamReader>

#include "data/data_error.h"
#include "platform/text_table.h"

namespace kalvor {
namespace {

struct XlsxRelation {
  QString type;  // the last part of the type's address: "worksheet", "styles"
  QString part;
};

QString xlsxPartPath(const QString& folder, const QString& target)
{
  const QString path = target.startsWith(u'/') ? target.mid(1) : folder + target;
  return QDir::cleanPath(path);
}

QString xlsxFolderOf(const QString& part) { return part.left(part.lastIndexOf(u'/') + 1); }

QHash<QString, XlsxRelation> readRelations(const ZipArchive& archive, const QString& part)
{
  QHash<QString, XlsxRelation> relations;
  const QString folder = xlsxFolderOf(part);
  const auto stream = archive.open(folder + QStringLiteral("_rels/") + part.mid(folder.size()) + QStringLiteral(".rels"));
  if (!stream)
    return relations;
  QXmlStreamReader xml(stream.get());
  while (nextXlsxElement(xml, *stream))
    if (xml.name() == u"Relationship" && relations.size() < ZipArchive::mostParts)
      relations.insert(xlsxAttribute(xml, u"Id"), {xlsxAttribute(xml, u"Type").section(u'/', -1),
                                                   xlsxPartPath(folder, xlsxAttribute(xml, u"Target"))});
  return relations;
}

QString relatedPart(const QHash<QString, XlsxRelation>& relations, QStringView type)
{
  for (const XlsxRelation& relation : relations)
    if (relation.type == type)
      return relation.part;
  return {};
}

bool isXlsxTrue(const QString& value) { return value == u"1" || value == u"true"; }

void readSheets(const ZipArchive& archive, const QString& part, const QHash<QString, XlsxRelation>& relations,
                XlsxWorkbook& workbook)
{
  const auto stream = archive.open(part);
  if (!stream)
    return;
  QXmlStreamReader xml(stream.get());
  while (nextXlsxElement(xml, *stream)) {
    if (xml.name() == u"workbookPr" && isXlsxTrue(xlsxAttribute(xml, u"date1904")))
      workbook.epoch = CellEpoch::Year1904;
    if (xml.name() != u"sheet" || workbook.sheets.size() >= ZipArchive::mostParts)
      continue;
    const XlsxRelation relation = relations.value(xlsxAttribute(xml, u"id"));
    if (relation.type == u"worksheet")  // no chart sheet
      workbook.sheets.append({xlsxAttribute(xml, u"name"), relation.part});
  }
}

void readSharedTexts(const ZipArchive& archive, const QString& part, XlsxWorkbook& workbook)
{
  const auto stream = part.isEmpty() ? nullptr : archive.open(part);
  if (!stream)
    return;
  qsizetype characters = 0;
  QXmlStreamReader xml(stream.get());
  while (nextXlsxElement(xml, *stream)) {
    if (xml.name() != u"si")
      continue;
    workbook.sharedTexts.append(xlsxText(xml));
    characters += workbook.sharedTexts.last().size();
    if (workbook.sharedTexts.size() > TextTable::mostCells || characters > TextTable::mostCharacters)
      throw DataError(QStringLiteral("Таблицата е твърде голяма."));
  }
  checkXlsxPart(xml, *stream);
}

void readStyles(const ZipArchive& archive, const QString& part, XlsxWorkbook& workbook)
{
  constexpr size_t mostStyles = 65'536;
  const auto stream = part.isEmpty() ? nullptr : archive.open(part);
  if (!stream)
    return;
  QHash<int, CellNumberKind> ownFormats;
  bool inCellStyles = false;
  QXmlStreamReader xml(stream.get());
  while (nextXlsxElement(xml, *stream)) {
    if (xml.name() == u"numFmt" && size_t(ownFormats.size()) < mostStyles) {
      ownFormats.insert(xlsxAttribute(xml, u"numFmtId").toInt(), cellNumberKind(xlsxAttribute(xml, u"formatCode")));
    } else if (xml.name() == u"xf" && inCellStyles && workbook.styles.size() < mostStyles) {
      const int format = xlsxAttribute(xml, u"numFmtId").toInt();
      workbook.styles.push_back(ownFormats.value(format, cellNumberKind(format)));
    } else if (xml.name() == u"cellXfs" || xml.name() == u"cellStyles" || xml.name() == u"cellStyleXfs") {
      inCellStyles = xml.name() == u"cellXfs";
    }
  }
}

// Characters that XML cannot hold are written as _x000D_.
QString withoutEscapes(QString text)
{
  constexpr qsizetype escapeLength = 7;
  for (qsizetype at = text.indexOf(u"_x"); at >= 0; at = text.indexOf(u"_x", at + 1)) {
    bool isCode = false;
    const ushort code = at + escapeLength <= text.size() && text[at + escapeLength - 1] == u'_'
                            ? QStringView(text).mid(at + 2, 4).toUShort(&isCode, 16)
                            : ushort(0);
    if (isCode)
      text.replace(at, escapeLength, QChar(code));
  }
  return text;
}

}  // namespace

QString xlsxAttribute(const QXmlStreamReader& xml, QStringView name)
{
  for (const QXmlStreamAttribute& attribute : xml.attributes())
    if (attribute.name() == name)
      return attribute.value().toString();
  return {};
}

QString xlsxText(QXmlStreamReader& xml)
{
  QString text;
  bool inPhonetics = false, inText = false;
  for (int depth = 1; depth > 0 && !xml.atEnd();) {
    switch (xml.readNext()) {
      case QXmlStreamReader::StartElement:
        ++depth;
        inPhonetics = inPhonetics || xml.name() == u"rPh";
        inText = xml.name() == u"t";
        break;
      case QXmlStreamReader::EndElement:
        --depth;
        if (xml.name() == u"rPh")
          inPhonetics = false;
        inText = false;
        break;
      case QXmlStreamReader::Characters:
        if (inText && !inPhonetics)
          text += xml.text();
        break;
      default: break;
    }
  }
  return text.contains(u"_x") ? withoutEscapes(text) : text;
}

void checkXlsxPart(const QXmlStreamReader& xml, const ZipPart& part)
{
  if (!part.failure().isEmpty())
    throw DataError(QStringLiteral("Таблицата на MS Excel е повредена: ") + part.failure());
  if (xml.hasError())
    throw DataError(QStringLiteral("Таблицата на MS Excel е повредена: ") + xml.errorString());
}

bool nextXlsxElement(QXmlStreamReader& xml, const ZipPart& part)
{
  while (!xml.atEnd()) {
    const QXmlStreamReader::TokenType token = xml.readNext();
    if (token == QXmlStreamReader::DTD)
      throw DataError(QStringLiteral("Таблицата на MS Excel съдържа DOCTYPE и не се приема."));
    if (token == QXmlStreamReader::StartElement)
      return true;
  }
  checkXlsxPart(xml, part);
  return false;
}

XlsxWorkbook readXlsxWorkbook(const ZipArchive& archive)
{
  XlsxWorkbook workbook;
  const QString part = relatedPart(readRelations(archive, {}), u"officeDocument");
  const QHash<QString, XlsxRelation> relations = readRelations(archive, part);
  readSheets(archive, part, relations, workbook);
  if (workbook.sheets.isEmpty())
    throw DataError(QStringLiteral("Файлът не съдържа лист с данни."));
  readSharedTexts(archive, relatedPart(relations, u"sharedStrings"), workbook);
  readStyles(archive, relatedPart(relations, u"styles"), workbook);
  return workbook;
}

}  // namespace kalvor
