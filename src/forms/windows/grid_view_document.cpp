// Grid views in the user's settings document.
#include "forms/form_settings.h"
#include "forms/windows/grid_view_store.h"
#include "session/error_log.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "widgets/db_grid_ex.h"

namespace kalvor {

namespace {

QString gridColorsGroup(int formId, int tag)
{
  return gridSettingsGroup(formId, tag) + QStringLiteral("Colors");
}

void dropGroup(QDomDocument& document, const QString& group)
{
  QDomElement root = document.documentElement();
  if (const QDomElement old = root.firstChildElement(group); !old.isNull()) {
    root.removeChild(old);
  }
}

// The whole group anew; without a line there is no group.
void replaceGroup(QDomDocument& document, const QString& group, const QStringList& lines)
{
  if (!SaveNodeToXml(document, group, lines, true)) {
    dropGroup(document, group);
  }
}

void loadFixedColumns(const QDomDocument& document, int formId, TDBGrid* grid)
{
  QStringList lines;
  GetNodeFromXml(document, formSettingsGroup(formId), lines);
  bool isNumber = false;
  const int count = valueOfLine(lines, fixedColumnsKey).toInt(&isNumber);
  if (auto* enhanced = qobject_cast<TDBGridEx*>(grid); enhanced && isNumber) {
    enhanced->setFixedColumns(count);
  }
}

void loadColors(const QDomDocument& document, int formId, int tag, TDBGrid* grid)
{
  QStringList lines;
  GetNodeFromXml(document, gridColorsGroup(formId, tag), lines);
  for (const QString& line : lines) {
    if (const auto color = colorFromText(lineValue(line))) {
      grid->setColumnColor(lineName(line), columnColor(*color));
    }
  }
}

}  // namespace

int gridTag(const TDBGrid* grid)
{
  return grid->property("tag").toInt();
}

void SaveGridView(QDomDocument& document, int formId, int tag, TDBGrid* grid)
{
  raisingLogged(QStringLiteral("SaveGridView"), [&] {
    QStringList widths, colors;
    for (const GridColumn& column : grid->columns()) {
      if (column.visible) {
        widths.append(column.fieldName + u'=' + QString::number(grid->columnCharacters(column.fieldName)));
      }
      if (column.color.isValid()) {
        colors.append(column.fieldName + u'=' + colorToText(columnColorValue(column.color)));
      }
    }
    if (widths.isEmpty()) {
      return;
    }
    replaceGroup(document, gridSettingsGroup(formId, tag), widths);
    replaceGroup(document, gridColorsGroup(formId, tag), colors);
    if (const auto* enhanced = qobject_cast<TDBGridEx*>(grid); enhanced && enhanced->fixedColumns() > 0) {
      SaveNodeToXml(document, formSettingsGroup(formId),
                    {fixedColumnsKey + u'=' + QString::number(enhanced->fixedColumns())}, false);
    }
  });
}

bool LoadGridView(const QDomDocument& document, int formId, int tag, TDBGrid* grid, bool showUnlisted)
{
  return raisingLogged(QStringLiteral("LoadGridView"), [&] {
    loadFixedColumns(document, formId, grid);
    QStringList lines;
    GetNodeFromXml(document, gridSettingsGroup(formId, tag), lines);
    if (lines.isEmpty()) {
      return false;
    }
    int position = 0;
    QStringList listed;
    for (const QString& line : lines) {
      const QString name = lineName(line);
      if (grid->datasetModel()->columnOf(name) < 0) {
        continue;
      }
      listed.append(name.toLower());
      grid->moveColumn(name, position++);
      if (const int characters = lineValue(line).toInt(); characters > 0) {
        grid->setColumnCharacters(name, characters);
      }
      grid->setColumnVisible(name, true);
    }
    const QList<GridColumn> columns = grid->columns();
    for (const GridColumn& column : columns) {
      if (!listed.contains(column.fieldName.toLower())) {
        grid->setColumnVisible(column.fieldName, showUnlisted);
      }
    }
    loadColors(document, formId, tag, grid);
    return true;
  });
}

}  // namespace kalvor
