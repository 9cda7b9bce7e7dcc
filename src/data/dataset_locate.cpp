// Finding a record of the view by values, wherever they stand.
#include "data/client_dataset_p.h"
#include "data/messages.h"
#include "data/value_matcher.h"

namespace kalvor {

namespace {

// One value for one field, an array for several; values of another number fit no record.
VariantArray wantedValues(const Variant& values, qsizetype count)
{
  const bool array = values.typeId() == QMetaType::QVariantList;
  const VariantArray wanted = array ? values.toList() : VariantArray{values};
  if (wanted.size() != count)
    throw DataError(dataMessage(errKeyValues));
  return wanted;
}

}  // namespace

qsizetype TClientDataSet::Private::findInView(const QList<TField*>& keyFields, const VariantArray& wanted,
                                              LocateOptions options, qsizetype from) const
{
  struct Condition {
    TField* field;
    ValueMatcher matcher;
  };
  std::vector<Condition> conditions;
  for (qsizetype i = 0; i < keyFields.size(); ++i)
    conditions.push_back({keyFields[i], ValueMatcher(keyFields[i]->type_, wanted[i], options)});

  Column single;
  const auto holds = [&](const Condition& condition, RecordRef record, qsizetype position) {
    if (condition.field->column_ >= 0)
      return condition.matcher.matches(record.records->columns[size_t(condition.field->column_)], record.row);
    single = Column(storageOf(condition.field->type_));
    appendCell(single, condition.field->type_, condition.field->ValueAt(position));
    return condition.matcher.matches(single, 0);
  };
  for (qsizetype position = from; position < qsizetype(view.size()); ++position) {
    const RecordRef record = recordOfViewRow(position);
    bool all = true;
    for (size_t i = 0; all && i < conditions.size(); ++i)
      all = holds(conditions[i], record, position);
    if (all)
      return position;
  }
  return -1;
}

qsizetype TClientDataSet::Private::findFetching(const QList<TField*>& keyFields, const VariantArray& wanted,
                                                LocateOptions options)
{
  qsizetype position = findInView(keyFields, wanted, options, 0);
  if (position < 0 && !allFetched && hasProvider()) {
    q->FetchAll();
    position = findInView(keyFields, wanted, options, 0);
  }
  return position;
}

QList<TField*> TClientDataSet::Private::keyFields() const
{
  QList<TField*> found;
  for (const QString& name : splitNames(q->Key))
    if (TField* field = q->FindField(name))
      found.append(field);
  return found;
}

VariantArray TClientDataSet::Private::keyOfCurrent() const
{
  VariantArray key;
  if (currentRow() != noRow)
    for (const TField* field : keyFields())
      key.append(field->Value());
  return key;
}

qsizetype TClientDataSet::Private::findKey(const VariantArray& key, qsizetype from) const
{
  return key.isEmpty() ? -1 : findInView(keyFields(), key, {}, from);
}

bool TClientDataSet::Locate(const QString& fieldNames, const Variant& values, LocateOptions options)
{
  CheckBrowseMode();
  const QList<TField*> keyFields = d->fieldsOf(fieldNames);
  const qsizetype position = d->findFetching(keyFields, wantedValues(values, keyFields.size()), options);
  if (position < 0)
    return false;
  d->moveTo(position);
  return true;
}

Variant TClientDataSet::Lookup(const QString& keyFields, const Variant& keyValues, const QString& resultFields)
{
  d->checkActive();
  const QList<TField*> keys = d->fieldsOf(keyFields);
  const qsizetype position = d->findFetching(keys, wantedValues(keyValues, keys.size()), {});
  if (position < 0)
    return {};
  const ForeignRecord positioned(d.get(), d->recordOfViewRow(position));
  return FieldValues(resultFields);
}

}  // namespace kalvor
