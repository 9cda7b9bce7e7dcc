#include "platform/spreadsheet_reader.h"

#include <QFile>
#include <QFileInfo>

#include "data/data_error.h"
#include "platform/xls_reader.h"
#include "platform/xlsx_reader.h"

namespace kalvor {

TextTable readSpreadsheet(const QString& fileName, const CellTextFormat& format)
{
  constexpr QByteArrayView compoundFile("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
  constexpr QByteArrayView zipFile("PK\x03\x04");
  QFile file(fileName);
  if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
    throw DataError(QStringLiteral("Файлът не може да бъде отворен: ") + fileName);
  const QByteArray beginning = file.read(compoundFile.size());
  file.close();
  if (beginning == compoundFile)
    return readXls(fileName, format);
  if (beginning.startsWith(zipFile))
    return readXlsx(fileName, format);
  throw DataError(QStringLiteral("Файлът не е таблица на MS Excel: ") + fileName);
}

}  // namespace kalvor
