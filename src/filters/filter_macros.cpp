#include "filters/filter_macros.h"

#include <QStringList>

#include "common/delimited_list.h"
#include "filters/filter_expression.h"
#include "platform/ports.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {
namespace {

const QString paramOpener = QStringLiteral("<#Param(");

QString currentDateText()
{
  return systemClock().today().toString(QStringLiteral("yyyyMMdd"));
}

struct ParamRow {
  const char16_t* name;
  QString (*value)();
};
constexpr ParamRow paramRows[] = {
    {u"BUSINESSGROUP_ID", [] { return LocalData.BGroupId; }},
    {u"COMPANY_ID", [] { return LocalData.CompanyId; }},
    {u"USER_ID", [] { return LocalData.UserId; }},
    {u"CURRENT_DATE", currentDateText},
};

}  // namespace

QString macroName(const QString& value, const QString& opener)
{
  const qsizetype start = value.indexOf(opener);
  if (start < 0)
    return {};
  const qsizetype from = start + opener.size();
  return value.mid(from, qMax<qsizetype>(0, value.size() - 3 - from));
}

QString ConvertSimleParamFilterValues(const QString& value)
{
  return raisingLogged(QStringLiteral("uKalvorUtils.ConvertSimleParamFilterValues"), [&] {
    if (!value.contains(paramOpener))
      return value;
    const QString name = macroName(value, paramOpener);
    for (const ParamRow& row : paramRows)
      if (name.compare(QStringView(row.name), Qt::CaseInsensitive) == 0)
        return row.value();
    QString date;
    return GenerateIntervalData(name, date) == 0 ? date : QString();
  });
}

void RemoveFilterLinesWithFieldRels(QString& filterText)
{
  const QString separator = QStringLiteral("&");
  QStringList kept;
  for (const QString& part : filterText.split(separator).mid(0, GetItemsCountInList(filterText, separator)))
    if (!part.contains(QStringLiteral("<#Field(")))
      kept.append(part);
  filterText = kept.join(separator);
}

}  // namespace kalvor
