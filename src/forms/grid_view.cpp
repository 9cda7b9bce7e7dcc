#include "forms/grid_view.h"

#include "common/delimited_list.h"
#include "data/client_dataset.h"
#include "platform/ports.h"
#include "session/ini_options.h"
#include "session/local_settings_file.h"

namespace kalvor {
namespace {

const QString viewSeparator = QStringLiteral(";");

int viewNumber(const QString& text)
{
  bool read = false;
  const int number = text.trimmed().toInt(&read);
  if (!read)
    throw DataError(QStringLiteral("'%1' не е цяло число").arg(text));
  return number;
}

// Characters of a field that has no width of its own.
int typicalWidth(const TField* field)
{
  switch (field->FieldDataType()) {
    case DataType::String:
    case DataType::WideString: return field->Size();
    case DataType::Boolean: return 5;
    case DataType::LargeInt: return 15;
    case DataType::DateTime:
    case DataType::TimeStamp: return 18;
    default: return 10;
  }
}

}  // namespace

QString gridViewFile(const QString& fileName)
{
  const qsizetype folder = qMax(fileName.lastIndexOf(u'/'), fileName.lastIndexOf(u'\\'));
  const qsizetype dot = fileName.lastIndexOf(u'.');
  return (dot > folder ? fileName.left(dot) : fileName) + QStringLiteral(".ini");
}

QString gridViewSection(int formId, const QString& tag) { return QString::number(formId) + u';' + tag; }
QString enhancedGridViewSection(int formId, const QString& tag) { return QString::number(formId) + u'|' + tag; }
QString stringGridViewSection(int formId) { return QString::number(formId); }
QString gridViewKey(const QString& gridName, int position) { return gridName + u';' + QString::number(position); }

QString gridViewValue(const GridViewColumn& column)
{
  return QStringList{column.fieldName, QString::number(column.width), colorToText(column.color),
                     settingText(column.visible), QString::number(int(column.alignment)), QString()}
      .join(viewSeparator);
}

QString stringGridViewValue(const StringGridViewColumn& column)
{
  QStringList parts = column.texts.mid(0, 4);
  parts.resize(4);
  return (parts + QStringList{QString::number(column.width), colorToText(column.color), QString()}).join(viewSeparator);
}

GridViewLine::GridViewLine(const QString& line)
    : gridName_(GetItemAtPos(lineName(line), viewSeparator, 0)),
      position_(GetItemAtPos(lineName(line), viewSeparator, 1)),
      value_(lineValue(line))
{
}

int GridViewLine::position() const { return viewNumber(position_); }
QString GridViewLine::text(int part) const { return GetItemAtPos(value_, viewSeparator, part); }
int GridViewLine::number(int part) const { return viewNumber(text(part)); }

ColorValue GridViewLine::color(int part) const
{
  const auto color = colorFromText(text(part));
  if (!color)
    throw DataError(QStringLiteral("'%1' не е цвят").arg(text(part)));
  return *color;
}

bool GridViewLine::flag(int part) const
{
  const bool value = settingBool(text(part), false);
  if (!value && settingBool(text(part), true))
    throw DataError(QStringLiteral("'%1' не е логическа стойност").arg(text(part)));
  return value;
}

QString gridSettingsGroup(int formId, int tag)
{
  return QStringLiteral("Form_Id%1Tag_Id%2").arg(formId).arg(tag);
}

int GetColSize(const TField* field)
{
  const DataType type = field->FieldDataType();
  const int caption = int(field->DisplayLabel.size());
  if (type == DataType::Date || type == DataType::Time || type == DataType::DateTime || type == DataType::TimeStamp) {
    const QString moment = systemClock().now().toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
    return qMax(int(moment.size()), caption);
  }
  const int own = field->DisplayWidth > 0 ? field->DisplayWidth : typicalWidth(field);
  return isNumericType(type) ? own : qMax(own, caption);
}

}  // namespace kalvor
