// The fields that decide which item of a selector is in force, and what their change does to the record.
#include <QScopedValueRollback>
#include <algorithm>

#include "filters/filter_macros.h"
#include "forms/field_metadata.h"
#include "registry/selector.h"
#include "registry/selector_values.h"

namespace kalvor {
namespace {

const QString conditionFieldOpener = QStringLiteral("<#Field(");

bool isRegisteredDependant(const TSelectorDependantFieldsArray& registered, const TField* field)
{
  return std::ranges::any_of(registered, [field](const auto& entry) { return entry.Field == field; });
}

// A field without a description has the tag 0, and the first row's index with it.
QString metadataDefault(const IBaseIntf& form, const TField* field)
{
  const int dsIndex = dataSetIndex(field->DataSet());
  return field->Tag == 0 ? QString() : form.GetFieldDefaultValue(dsIndex, EncodeFieldIndexFromTag(field->Tag));
}

}  // namespace

QList<TField*> TSelector::GetDependantFields() const
{
  QList<TField*> fields;
  const auto add = [&](const QString& text) {
    TField* field = DataSet && text.contains(conditionFieldOpener)
                        ? DataSet->FindField(macroName(text, conditionFieldOpener))
                        : nullptr;
    if (field && !fields.contains(field))
      fields.append(field);
  };
  for (const TSelectorItem& item : Items) {
    for (const FilterRow& row : item.Condition) {
      add(row.field);
      add(variantText(row.value));
    }
  }
  return fields;
}

void TSelector::SetDependantSelectorField(TField* field)
{
  if (IBaseIntf* baseForm = form())
    baseForm->SetDependantSelectorField(field, this);
}

void TSelector::SetDependantFields()
{
  for (TField* field : GetDependantFields())
    SetDependantSelectorField(field);
  Index = GetIndex();
}

QString TSelector::GetFieldsToClear(int itemA, int itemB) const
{
  QStringList names;
  for (const int index : {itemA, itemB}) {
    if (index < 0 || index >= Items.size())
      continue;
    for (const QString& name : selectorFieldNames(Items[index].TargetFields))
      if (!name.isEmpty() && !names.contains(name, Qt::CaseInsensitive))
        names.append(name);
  }
  return names.isEmpty() ? QString() : names.join(u',') + u',';
}

void TSelector::resetField(TField* field, IBaseIntf* baseForm)
{
  const QString text = baseForm ? metadataDefault(*baseForm, field) : QString();
  const QScopedValueRollback<bool> writable(field->ReadOnly, false);
  setFieldAnyway(field, text.trimmed().isEmpty() ? Variant() : baseForm->ParseDefaultValue(text, field));
}

void TSelector::ModifySelectorFieldsIfChanged(TField*)
{
  const int newIndex = GetIndex();
  if (newIndex == Index)
    return;
  IBaseIntf* baseForm = form();
  const TSelectorDependantFieldsArray registered =
      baseForm ? baseForm->GetSelectorDependantFields() : TSelectorDependantFieldsArray();
  const QString names = GetFieldsToClear(newIndex, Index);
  for (const QString& name : selectorFieldNames(names)) {
    TField* field = DataSet && !name.isEmpty() ? DataSet->FindField(name) : nullptr;
    if (field && !isRegisteredDependant(registered, field))
      resetField(field, baseForm);
  }
  Index = newIndex;
}

}  // namespace kalvor
