#include "common/dataset_search.h"

namespace kalvor {
namespace {

class IndexScope {
 public:
  explicit IndexScope(TClientDataSet& dataSet) : dataSet_(dataSet), before_(dataSet.IndexFieldNames()) {}
  ~IndexScope()
  {
    try {
      if (dataSet_.State() == DataSetState::SetKey)
        dataSet_.Cancel();
      dataSet_.SetIndexFieldNames(before_);
    } catch (const DataError&) {
      // Only a dataset that was closed meanwhile refuses its own earlier index.
    }
  }
  IndexScope(const IndexScope&) = delete;
  IndexScope& operator=(const IndexScope&) = delete;

 private:
  TClientDataSet& dataSet_;
  QString before_;
};

}  // namespace

bool LocateCDS(TClientDataSet& dataSet, const QString& keyFields, const Variant& keyValues)
{
  const QStringList names = keyFields.split(u';', Qt::SkipEmptyParts);
  const VariantArray values =
      keyValues.typeId() == QMetaType::QVariantList ? keyValues.toList() : VariantArray{keyValues};
  if (values.size() != names.size())
    throw DataError(QStringLiteral("Bound of array do not match with count of KeyFields"));
  QList<TField*> fields;
  for (const QString& name : names) {
    TField* field = dataSet.FindField(name.trimmed());
    if (!field)
      throw DataError(QStringLiteral("Field %1 not found").arg(name.trimmed()));
    fields.append(field);
  }
  const IndexScope restored(dataSet);
  dataSet.SetIndexFieldNames(keyFields);
  dataSet.SetKey();
  for (qsizetype i = 0; i < fields.size(); ++i)
    fields.at(i)->SetValue(values.at(i));
  return dataSet.GotoKey();
}

}  // namespace kalvor
