// What stands around the cells of an Office Open XML workbook: where the sheets are, the shared texts, the number
// formats.
#pragma once

#include <QStringList>
#include <vector>

#include "platform/cell_text.h"
#include "platform/zip_archive.h"

class QXmlStreamReader;

namespace kalvor {

struct XlsxWorkbook {
  struct Sheet {
    QString name;
    QString part;
  };
  QList<Sheet> sheets;    // with cells, at least one
  CellEpoch epoch = CellEpoch::Year1900;
  QStringList sharedTexts;
  std::vector<CellNumberKind> styles;  // by the style number of a cell
};

// DataError when there is no sheet, or a part is damaged or has a DOCTYPE.
XlsxWorkbook readXlsxWorkbook(const ZipArchive& archive);

// An attribute by its name, whatever its prefix.
QString xlsxAttribute(const QXmlStreamReader& xml, QStringView name);
// The text of a shared or an inline string from its start element on to its end: its runs joined, phonetics left out.
QString xlsxText(QXmlStreamReader& xml);
// The next start element at whatever depth; false at the end of the part. DataError when the part is damaged, too big,
// or has a DOCTYPE.
bool nextXlsxElement(QXmlStreamReader& xml, const ZipPart& part);
void checkXlsxPart(const QXmlStreamReader& xml, const ZipPart& part);

}  // namespace kalvor
