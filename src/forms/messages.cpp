#include "forms/messages.h"

namespace kalvor {

QString withText(const QString& message, const QString& text)
{
  QString result = message;
  const qsizetype place = result.indexOf(QLatin1String("%s"));
  return place < 0 ? result : result.replace(place, 2, text);
}

QString rightsRefusal(const QString& message, int formId)
{
  return withText(message, QString::number(formId)) + QStringLiteral("\r\n") + _inf_CallSystemAdministrator;
}

}  // namespace kalvor
