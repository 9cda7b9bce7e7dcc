// The fields of a client dataset. They outlive closing: whoever set a label or a handler finds it again.
#include <algorithm>

#include "data/client_dataset_p.h"
#include "data/messages.h"

namespace kalvor {

QString requiredFieldMessage(const QString& displayLabel)
{
  return QStringLiteral("Field '%1' must have a value").arg(displayLabel);
}

TField* TClientDataSet::Private::addField(const FieldDef& definition, FieldValueKind kind)
{
  if (fieldNamed(definition.name))
    throw DataError(dataMessage(errFieldExists).arg(definition.name));
  fields.push_back(std::make_unique<TField>(q, definition, kind));
  TField* field = fields.back().get();
  fieldsByName.emplace(definition.name, field);
  return field;
}

void TClientDataSet::Private::removeField(TField* field)
{
  fieldsByName.erase(field->FieldName());
  calculatedColumns.remove(field);
  std::erase_if(fields, [field](const auto& owned) { return owned.get() == field; });
}

// Fields of the same name stay the objects they were; the rest comes and goes with the records.
void TClientDataSet::Private::bindFields(const QList<FieldDef>& definitions)
{
  QHash<QString, int> columns;
  for (int i = int(definitions.size()) - 1; i >= 0; --i)  // of two columns of one name the first is the field's
    columns.insert(definitions[i].name.toCaseFolded(), i);
  std::vector<TField*> gone;
  for (const auto& field : fields)
    if (field->kind_ == FieldValueKind::Data && !columns.contains(field->name_.toCaseFolded()))
      gone.push_back(field.get());
  for (TField* field : gone)
    removeField(field);

  const QStringList keys = splitNames(q->Key);
  for (int i = 0; i < int(definitions.size()); ++i) {
    const FieldDef& definition = definitions[i];
    if (columns.value(definition.name.toCaseFolded()) != i)
      continue;
    TField* field = fieldNamed(definition.name);
    if (!field) {
      field = addField(definition, FieldValueKind::Data);
      field->InKey = keys.contains(definition.name, Qt::CaseInsensitive);
    }
    field->kind_ = FieldValueKind::Data;
    field->type_ = definition.type;
    field->size_ = definition.size;
    field->column_ = i;
  }
}

QStringList TClientDataSet::Private::splitNames(const QString& names) const
{
  QStringList parts = names.split(u';', Qt::SkipEmptyParts);
  for (QString& part : parts)
    part = part.trimmed();
  return parts;
}

QList<TField*> TClientDataSet::Private::fieldsOf(const QString& names) const
{
  QList<TField*> found;
  for (const QString& name : splitNames(names))
    found.append(q->FieldByName(name));
  return found;
}

int TClientDataSet::FieldCount() const
{
  return int(d->fields.size());
}

TField* TClientDataSet::Field(int index) const
{
  return index < 0 || index >= FieldCount() ? nullptr : d->fields[size_t(index)].get();
}

TField* TClientDataSet::FindField(QStringView name) const
{
  return d->fieldNamed(name);
}

TField* TClientDataSet::FieldByName(QStringView name) const
{
  if (TField* field = FindField(name))
    return field;
  throw DataError(dataMessage(errFieldNotFound).arg(name));
}

QList<TField*> TClientDataSet::Fields() const
{
  QList<TField*> all;
  all.reserve(FieldCount());
  for (const auto& field : d->fields)
    all.append(field.get());
  return all;
}

Variant TClientDataSet::FieldValues(const QString& names) const
{
  const QList<TField*> found = d->fieldsOf(names);
  if (found.size() == 1)
    return found.first()->Value();
  VariantArray values;
  for (const TField* field : found)
    values.append(field->Value());
  return values;
}

TField* TClientDataSet::AddCalculatedField(const FieldDef& definition, FieldValueKind kind)
{
  TField* field = d->addField(definition, kind);
  if (Active() && kind == FieldValueKind::InternalCalculated)
    d->addInternalColumn(field);
  else if (Active())
    d->addCalculatedColumn(field);
  d->notify(DataEvent::LayoutChange);
  return field;
}

TField* TClientDataSet::AddAggregateField(const QString& name, const QString& expression)
{
  FieldDef definition;
  definition.name = name;
  definition.type = DataType::Float;
  if (Active())  // an expression that cannot be computed is told now and not while something paints
    Aggregate(expression, [this](const QString& fieldName) { return d->columnOf(fieldName); });
  TField* field = d->addField(definition, FieldValueKind::Aggregate);
  field->Expression = expression;
  d->notify(DataEvent::LayoutChange);
  return field;
}

void TClientDataSet::RemoveField(TField* field)
{
  if (!field || field->DataSet() != this || field->FieldKind() == FieldValueKind::Data)
    return;
  if (field->FieldKind() != FieldValueKind::Aggregate && Active())
    throw DataError(dataMessage(errDataSetOpen));
  d->removeField(field);
  d->notify(DataEvent::LayoutChange);
}

}  // namespace kalvor
