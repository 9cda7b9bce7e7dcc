#include "registry/selector_lookup.h"

#include <optional>

#include "filters/filter_expression.h"
#include "registry/form_descriptions.h"
#include "registry/form_interfaces.h"
#include "registry/selector_items.h"
#include "registry/selector_values.h"
#include "session/dm.h"
#include "session/error_log.h"
#include "session/local_data.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

int requestLookupValue(int formId, const TFormData& description, const QString& columns, const FilterArray& filter,
                       Variant& value)
{
  if (!DM)
    return 0;
  RemoteCalls& server = *DM->ConBroker;
  const int query = server.Call(QStringLiteral("GetQueryID"), {formId, 0}).toInt();
  return query > 0 ? requestValue(server, query, QString(), columns, filter, value, RowsWanted::First)
                   : requestValue(server, TableColumns, description.BaseTable, columns, filter, value,
                                  RowsWanted::First);
}

// Source names that stand for no field of the lookup form's records.
struct SpecialSource {
  QLatin1String name;
  Variant (*value)();
};
constexpr SpecialSource specialSources[] = {
    {QLatin1String("Custom_Quantity"), [] { return Variant(1); }},
    {QLatin1String("NEWQTY"), [] { return Variant(LocalData.NewQty); }},
};

std::optional<Variant> specialSourceValue(const QString& name)
{
  for (const SpecialSource& special : specialSources)
    if (name == special.name)
      return special.value();
  return std::nullopt;
}

QStringList requestedColumns(const QStringList& sources)
{
  QStringList columns;
  for (const QString& name : sources)
    if (!name.isEmpty() && !specialSourceValue(name) && !columns.contains(name, Qt::CaseInsensitive))
      columns.append(name);
  return columns;
}

struct FoundRecord {
  int count = 0;
  QStringList columns;
  VariantArray values;

  Variant value(const QString& source) const
  {
    if (const std::optional<Variant> special = specialSourceValue(source))
      return *special;
    for (qsizetype i = 0; i < columns.size(); ++i)
      if (columns[i].compare(source, Qt::CaseInsensitive) == 0)
        return values.value(i);
    return {};
  }
};

// Nothing when the lookup form is not registered.
std::optional<FoundRecord> findRecord(int formId, const QString& sourceFields, const FilterArray& filter,
                                      const FilterArray& publicFilter)
{
  const SelectorServices& services = selectorServices();
  const TFormData* description = services.GetFromDataObject(QString::number(formId), 0);
  if (!description)
    return std::nullopt;
  FoundRecord found;
  found.columns = requestedColumns(selectorFieldNames(sourceFields));
  Variant value;
  found.count = services.RequestValue(formId, *description, found.columns.join(u','),
                                      GetAllFilter(publicFilter, filter), value);
  found.values = value.typeId() == QMetaType::QVariantList ? value.toList() : VariantArray{value};
  return found;
}

// The dataset's own tag when its form gave it one, else its place among the datasets of its form.
int tagOfDataSet(const TClientDataSet* dataSet)
{
  if (!dataSet)
    return 0;
  const QVariant own = dataSet->property("tag");
  return own.isValid() ? own.toInt() : dataSetIndex(dataSet);
}

TRecordLine filledLine(TRecordLine line, const FoundRecord& record)
{
  for (TFieldSet& set : line)
    set.Value = record.value(set.FieldName);
  return line;
}

bool handOver(QObject* owner, const TRecordLine& line, ShowOption options)
{
  auto* taker = dynamic_cast<ISelectorOwnerIntf*>(owner);
  return taker && taker->ProcessSelectedRecords({line}, options);
}

struct LookupRequest {
  int formId;
  const QString& sourceFields;
  const FilterArray& filter;
  const FilterArray& publicFilter;
  bool showAlways;
  ShowOption options;
  ShowOption formOptions;
  const TDefaultValues& defaults;
  QObject* owner;
};

int runLookup(const LookupRequest& request, const TRecordLine& line)
{
  if (!request.showAlways) {
    const auto found = findRecord(request.formId, request.sourceFields, request.filter, request.publicFilter);
    if (!found)
      return SelectorNotChosen;
    if (found->count == 1)
      return handOver(request.owner, filledLine(line, *found), request.options) ? SelectorChosen : SelectorNotChosen;
  }
  const auto& requestForm = selectorServices().RequestForm;
  TSelectionList selection{line};
  return requestForm ? requestForm(request.formId, request.formOptions, request.filter, request.publicFilter, selection,
                                   request.defaults, request.owner)
                     : int(SelectorOpened);
}

}  // namespace

SelectorServices& selectorServices()
{
  static SelectorServices services{kalvor::GetFromDataObject, requestLookupValue, {}};
  return services;
}

TRecordLine selectorFieldSets(const QString& sourceFields, const QString& targetFields, TClientDataSet* dataSet,
                              const QString& keyField)
{
  const QStringList sources = selectorFieldNames(sourceFields);
  const QStringList targets = selectorFieldNames(targetFields);
  const bool bound = !keyField.isEmpty() && keyField != selectorNoField;
  TRecordLine line;
  for (qsizetype i = 0; i < targets.size(); ++i) {
    TFieldSet set;
    set.Tag = tagOfDataSet(dataSet);
    set.FieldName = sources.value(i);
    set.Field = dataSet ? dataSet->FindField(targets[i]) : nullptr;
    set.KeyField = bound && targets[i].compare(keyField, Qt::CaseInsensitive) == 0;
    line.append(set);
  }
  return line;
}

int GetSelector(int formId, const QString& sourceFields, const QString& targetFields, TClientDataSet* dataSet,
                const FilterArray& filter, const FilterArray& publicFilter, bool showAlways, bool& flag,
                bool notFromField, ShowOption options, const TDefaultValues& defaults, QObject* owner,
                const QString& keyField)
{
  flag = true;
  return raisingLogged(QStringLiteral("GetSelector"), [&] {
    const ShowOption formOptions = notFromField ? options : options | so_ShowModal;
    return runLookup({formId, sourceFields, filter, publicFilter, showAlways, options, formOptions, defaults, owner},
                     selectorFieldSets(sourceFields, targetFields, dataSet, keyField));
  });
}

bool FillSelectorFields(int formId, const QString& sourceFields, const QString& targetFields, TClientDataSet* dataSet,
                        const FilterArray& filter, const FilterArray& publicFilter, bool& flag, QObject* owner)
{
  flag = true;
  return raisingLogged(QStringLiteral("KalvorUtils.FillSelectorFields"), [&] {
    const auto found = findRecord(formId, sourceFields, filter, publicFilter);
    if (!found || found->count != 1)
      return false;
    return handOver(owner, filledLine(selectorFieldSets(sourceFields, targetFields, dataSet, QString()), *found),
                    so_SelectSingle);
  });
}

bool TakeSelectorRecord(const QString& sourceFields, const QString& targetFields, TClientDataSet* dataSet,
                        const QStringList& columns, const VariantArray& values, QObject* owner, const QString& keyField)
{
  return raisingLogged(QStringLiteral("KalvorUtils.FillSelectorFields"), [&] {
    const FoundRecord record{1, columns, values};
    return handOver(owner, filledLine(selectorFieldSets(sourceFields, targetFields, dataSet, keyField), record),
                    so_SelectSingle);
  });
}

int GetControlSelector(int formId, const QString& sourceFields, const FilterArray& filter,
                       const FilterArray& publicFilter, bool showAlways, bool& flag, ShowOption options,
                       const TDefaultValues& defaults, QObject* owner)
{
  flag = true;
  return raisingLogged(QStringLiteral("GetControlSelector"), [&] {
    TRecordLine line;
    for (const QString& source : selectorFieldNames(sourceFields)) {
      TFieldSet set;
      set.FieldName = source;
      line.append(set);
    }
    return runLookup({formId, sourceFields, filter, publicFilter, showAlways, options, options, defaults, owner}, line);
  });
}

}  // namespace kalvor
