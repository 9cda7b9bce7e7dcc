#include "registry/form_descriptions.h"

#include "platform/ports.h"

namespace kalvor {

namespace {

QString descriptionText(const VariantArray& row, int column)
{
  return column < row.size() ? variantText(row[column]) : QString();
}

qint64 descriptionNumber(const VariantArray& row, int column)
{
  return column < row.size() ? row[column].toLongLong() : 0;
}

}  // namespace

TFormData formDataFromRow(const VariantArray& row)
{
  TFormData data;
  data.Caption = descriptionText(row, 0);
  data.ClassName = descriptionText(row, 1);
  data.CaptionFields = descriptionText(row, 2);
  data.IntegerValue = descriptionNumber(row, 4);
  data.TextValue = descriptionText(row, 5);
  data.BaseTable = descriptionText(row, 6);
  data.DsIndex = int(descriptionNumber(row, 7));
  data.FormFilter = descriptionText(row, 8);
  data.OrderBy = descriptionText(row, 9);
  data.LineColors = descriptionText(row, 10);
  return data;
}

FormDescriptions::FormDescriptions(Source source) : source_(std::move(source)) {}

const TFormData* FormDescriptions::cached(const QString& formId, int dsIndex) const
{
  for (const auto& entry : entries_) {
    if (entry->formId == formId && (dsIndex <= 0 || entry->data.DsIndex == dsIndex)) {
      return &entry->data;
    }
  }
  return nullptr;
}

const TFormData* FormDescriptions::find(const QString& formId, int dsIndex)
{
  if (const TFormData* known = cached(formId, dsIndex)) {
    return known;
  }
  VariantArray rows;
  if (source_(formId, dsIndex, rows) <= 0 || rows.isEmpty()) {
    showError(formId + u' ' + _err_NoRegisteredForm);
    return nullptr;
  }
  entries_.push_back(std::make_unique<Entry>(Entry{formId, formDataFromRow(rows.first().toList())}));
  return &entries_.back()->data;
}

}  // namespace kalvor
