#include "common/export_columns.h"

namespace kalvor {

namespace {

QStringList inFieldOrder(const TClientDataSet& dataSet, const QStringList& captions)
{
  QStringList names;
  for (const TField* field : dataSet.Fields())
    if (captions.contains(field->DisplayLabel))
      names.append(field->FieldName());
  return names;
}

QStringList inCaptionOrder(const TClientDataSet& dataSet, const QStringList& captions)
{
  QStringList names;
  for (qsizetype i = 0; i < captions.size(); ++i) {
    const bool lastOfCaption = captions.indexOf(captions[i], i + 1) < 0;
    for (const TField* field : dataSet.Fields()) {
      if (field->DisplayLabel != captions[i] || names.contains(field->FieldName()))
        continue;
      names.append(field->FieldName());
      if (!lastOfCaption)
        break;
    }
  }
  return names;
}

}  // namespace

QStringList chosenFields(const TClientDataSet* dataSet, const QStringList& captions, ExportOrder order)
{
  if (!dataSet)
    return {};
  return order == ExportOrder::OfFields ? inFieldOrder(*dataSet, captions) : inCaptionOrder(*dataSet, captions);
}

ExportColumns::ExportColumns(const TClientDataSet* dataSet, QStringList fields)
  : dataSet_(dataSet), fields_(std::move(fields))
{
  bind();
}

void ExportColumns::bind()
{
  columns_.clear();
  for (const QString& name : std::as_const(fields_)) {
    ExportColumn column;
    column.field = dataSet_->FieldByName(name);
    if (dataSet_->Active() && column.field->column() >= 0)
      column.column = &dataSet_->Records().columns[size_t(column.field->column())];
    columns_.push_back(column);
  }
}

}  // namespace kalvor
