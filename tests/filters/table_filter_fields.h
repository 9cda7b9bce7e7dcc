// A dataset with one field of each kind, and its descriptions.
#pragma once

#include "filters/table_filter.h"
#include "records.h"

namespace kalvor::testing {

struct DescriptionSpec {
  const char* name;
  const char* caption;
  int kind;
  DataType type;             // Unknown: the dataset has no such field
  const char* filterable = "1";
  const char* required = "0";
  const char* options = "";
  const char* selector = "";
  const char* defaultValue = "";
};

inline VariantArray descriptionRow(const DescriptionSpec& spec)
{
  VariantArray row(fieldColumnCount);
  const auto set = [&](FieldColumn column, const QString& text) { row[int(column)] = text; };
  set(FieldColumn::FieldName, QString(spec.name));
  set(FieldColumn::Caption, QString(spec.caption));
  set(FieldColumn::FieldType, QString::number(spec.kind));
  set(FieldColumn::Required, QString(spec.required));
  set(FieldColumn::Filterable, QString(spec.filterable));
  set(FieldColumn::FieldFilter, QStringLiteral("T.") + spec.name);
  set(FieldColumn::OptionCaption, QString(spec.options));
  set(FieldColumn::SelectorDesc, QString(spec.selector));
  set(FieldColumn::DefaultValue, QString(spec.defaultValue));
  return row;
}

inline VariantArray descriptionRows(const QList<DescriptionSpec>& specs)
{
  VariantArray rows;
  for (const DescriptionSpec& spec : specs) {
    rows.append(Variant(descriptionRow(spec)));
  }
  return rows;
}

inline const QList<DescriptionSpec>& sampleDescriptions()
{
  static const QList<DescriptionSpec> specs{
      {"Name", "Име", 0, DataType::WideString, "1", "1", "", "", "<#CURRENTUSER#>"},
      {"Code", "Код", 0, DataType::Integer},
      {"Amount", "Сума", 0, DataType::Float},
      {"Status", "Състояние", 1, DataType::Integer, "1", "1", "Нова, Платена,Анулирана", "", "1"},
      {"Partner", "Контрагент", 2, DataType::String, "1", "0", "", ";140;Id,Code,Name;X,Partner,Name;;"},
      {"Active", "Активен", 4, DataType::Integer},
      {"DocDate", "Дата", 7, DataType::DateTime, "1", "1", "", "", "<#CURRENTDATE#>"},
      {"FromDate", "От дата", 9, DataType::Unknown, "1", "1", "", "", "<#CURRENTDATE#>"},
      {"Store", "Склад", 8, DataType::Unknown, "1", "1"},
      {"Hidden", "Скрито", 0, DataType::String, "0"},
      {"Nameless", "", 0, DataType::String},
  };
  return specs;
}

inline void createSampleDataSet(TClientDataSet& dataSet)
{
  QList<FieldDef> fields;
  for (const DescriptionSpec& spec : sampleDescriptions()) {
    if (spec.type != DataType::Unknown) {
      fields.append(fieldDef(QString(spec.name), spec.type, 40));
    }
  }
  dataSet.CreateDataSet(fields);
}

// "field;operator;value;conjunction" a row.
inline void fillTable(StringTable& grid, const QStringList& rows)
{
  grid.SetRowCount(int(rows.size()) + 1);
  for (int row = 1; row <= rows.size(); ++row) {
    const QStringList cells = rows[row - 1].split(u';');
    for (int column = 0; column < tableFilterColumnCount; ++column) {
      grid.SetCells(column, row, cells.value(column));
    }
  }
}

inline QStringList tableTexts(const StringTable& grid)
{
  QStringList rows;
  for (int row = 1; row < grid.RowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < tableFilterColumnCount; ++column) {
      cells.append(grid.Cells(column, row));
    }
    rows.append(cells.join(u';'));
  }
  return rows;
}

}  // namespace kalvor::testing
