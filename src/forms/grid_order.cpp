#include "forms/grid_order.h"

#include <QStringList>

namespace kalvor {

QString orderAfterTitleClick(const QString& order, const QString& fieldName, TitleClick click)
{
  if (click == TitleClick::OrdersByIt) {
    return fieldName;
  }
  const QString descending = QStringLiteral(" DESC");
  QStringList fields;
  bool known = false;
  for (const QString& part : order.split(u';', Qt::SkipEmptyParts)) {
    const QString field = part.trimmed();
    const QString name = field.section(u' ', 0, 0);
    if (name.compare(fieldName, Qt::CaseInsensitive) != 0) {
      fields.append(field);
      continue;
    }
    known = true;
    fields.append(field.endsWith(descending, Qt::CaseInsensitive) ? name : name + descending);
  }
  if (!known) {
    fields.append(fieldName);
  }
  return fields.join(u';');
}

}  // namespace kalvor
