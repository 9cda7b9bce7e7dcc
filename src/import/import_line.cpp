#include "import/import_line.h"

namespace kalvor {

QString GetImportRecInfo(const TImportLine& line, const QString& separator)
{
  QStringList values;
  for (const TImportCell& cell : line) {
    if (cell.IsKey)
      values.append(cell.Value.toString());
  }
  return values.join(separator);
}

}  // namespace kalvor
