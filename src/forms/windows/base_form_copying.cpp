// Copying the current record (and what a form adds to it) into new ones.
#include "forms/field_metadata.h"
#include "forms/windows/base_form_private.h"
#include "platform/ports.h"

namespace kalvor {

namespace {

QStringList copiedFields(const TCopyInfo& info)
{
  if (!info.FieldList.isEmpty()) {
    return info.FieldList.split(u';', Qt::SkipEmptyParts);
  }
  QStringList names;
  for (const TField* field : info.DataSet->Fields()) {
    if (field->FieldKind() == FieldValueKind::Data && hasFlag(field, ffCopyField)) {
      names.append(field->FieldName());
    }
  }
  return names;
}

VariantArray currentValues(const TClientDataSet& dataSet, const QStringList& fields)
{
  VariantArray values;
  for (const QString& name : fields) {
    const TField* field = dataSet.FindField(name);
    values.append(field ? field->Value() : Variant());
  }
  return values;
}

QList<VariantArray> valuesToCopy(const TCopyInfo& info, const QStringList& fields)
{
  QList<VariantArray> records;
  TClientDataSet& dataSet = *info.DataSet;
  if (fields.isEmpty() || !dataSet.Active() || dataSet.IsEmpty()) {
    return records;
  }
  if (!info.AllRecords) {
    records.append(currentValues(dataSet, fields));
    return records;
  }
  const ControlsDisabledScope quiet(&dataSet);
  for (dataSet.First(); !dataSet.Eof(); dataSet.Next()) {
    records.append(currentValues(dataSet, fields));
  }
  return records;
}

// The change handlers of a dataset's fields, held back while this lives.
class HeldChangeHandlers {
 public:
  HeldChangeHandlers(TClientDataSet& dataSet, bool hold)
  {
    for (TField* field : hold ? dataSet.Fields() : QList<TField*>()) {
      held_.push_back({field, std::exchange(field->OnChange, nullptr)});
    }
  }
  ~HeldChangeHandlers()
  {
    for (auto& [field, handler] : held_) {
      field->OnChange = std::move(handler);
    }
  }
  HeldChangeHandlers(const HeldChangeHandlers&) = delete;
  HeldChangeHandlers& operator=(const HeldChangeHandlers&) = delete;

 private:
  std::vector<std::pair<TField*, FieldEvent>> held_;
};

void insertCopies(const TCopyInfo& info, const QStringList& fields, const QList<VariantArray>& records)
{
  TClientDataSet& dataSet = *info.DataSet;
  const HeldChangeHandlers held(dataSet, info.AllRecords);
  for (const VariantArray& values : records) {
    dataSet.Append();
    for (qsizetype i = 0; i < fields.size(); ++i) {
      if (TField* field = dataSet.FindField(fields[i])) {
        field->SetValue(values[i]);
      }
    }
  }
}

}  // namespace

void TfBase::SetCopyInfo(QList<TCopyInfo>& list)
{
  list.append({GetCdsMaster(), false, QString()});
}

void TfBase::acCopyNewExecute()
{
  const WaitCursorScope wait;
  QList<TCopyInfo> list;
  SetCopyInfo(list);
  QList<QStringList> fields;
  QList<QList<VariantArray>> records;
  for (const TCopyInfo& info : list) {
    fields.append(copiedFields(info));
    records.append(valuesToCopy(info, fields.last()));
  }
  for (qsizetype i = 0; i < list.size(); ++i) {
    insertCopies(list[i], fields[i], records[i]);
  }
  execute(QStringLiteral("acReCalcDocument"));
}

}  // namespace kalvor
