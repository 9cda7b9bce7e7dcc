#include "forms/form_settings.h"

#include "filters/filter_expression.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

const QString widthKey = QStringLiteral("FormWidth");
const QString heightKey = QStringLiteral("FormHeight");
const QString filterKey = QStringLiteral("Filter");
const QString sortOrderKey = QStringLiteral("SortOrder");

bool ownedByFormSettings(const QString& line)
{
  const QString name = lineName(line);
  for (const QString& key : {widthKey, heightKey, filterKey, sortOrderKey})
    if (name.compare(key, Qt::CaseInsensitive) == 0)
      return true;
  return false;
}

std::optional<QSize> storedSize(const QStringList& lines)
{
  bool widthRead = false, heightRead = false;
  const int width = valueOfLine(lines, widthKey).toInt(&widthRead);
  const int height = valueOfLine(lines, heightKey).toInt(&heightRead);
  if (!widthRead || !heightRead || width <= 0 || height <= 0)
    return std::nullopt;
  return QSize(width, height);
}

}  // namespace

QString formSettingsGroup(int formId)
{
  return QStringLiteral("Form_Id") + QString::number(formId);
}

LoadedFormSettings loadFormSettings(const QStringList& lines, const TIniOptions& use, ShowOption options,
                                    const FilterArray& formFilter)
{
  LoadedFormSettings loaded;
  if (use.FormSize)
    loaded.size = storedSize(lines);
  if (use.SortOrder)
    loaded.sortOrder = valueOfLine(lines, sortOrderKey);
  const bool filterCounts = formFilter.isEmpty() && !(options & (selectionModes() | so_Card));
  if (use.Filter && filterCounts)
    if (const QString text = valueOfLine(lines, filterKey); !text.isEmpty())
      loaded.filter = BuildFilterFromStr(text);
  return loaded;
}

QStringList formSettingsLines(const QStringList& stored, const FormSettingsToSave& form, const TIniOptions& use,
                              ShowOption options)
{
  QStringList lines;
  for (const QString& line : stored)
    if (!ownedByFormSettings(line))
      lines.append(line);
  if (use.FormSize && !form.maximized) {
    lines.append(widthKey + u'=' + QString::number(form.size.width()));
    lines.append(heightKey + u'=' + QString::number(form.size.height()));
  }
  if (use.Filter && !(options & (ShowOption(so_SelectSingle) | so_SelectMulty | so_Card)))
    lines.append(filterKey + u'=' + BuildStrFilter(form.formFilter));
  if (use.SortOrder && !form.sortOrder.isEmpty())
    lines.append(sortOrderKey + u'=' + form.sortOrder);
  return lines;
}

}  // namespace kalvor
