#include "filters/selector_macros.h"

#include <optional>

#include "filters/filter_expression.h"
#include "filters/filter_macros.h"
#include "registry/form_interfaces.h"
#include "registry/selector.h"
#include "registry/selector_control.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {
namespace {

const QString fieldOpener = QStringLiteral("<#Field(");
const QString masterFieldMacro = QStringLiteral("<#MasterField(");
const QString parameterOpener = QStringLiteral("<#Param(");
const QString constOpener = QStringLiteral("<#Const(");
const QString sqlParamOpener = QStringLiteral("<#SqlParam(");

IBaseIntf* formOfDataSet(const TClientDataSet* dataSet)
{
  return dataSet ? dynamic_cast<IBaseIntf*>(dataSet->parent()) : nullptr;
}

std::optional<Variant> namedFieldValue(const TClientDataSet* dataSet, const QString& name)
{
  const TField* field = dataSet ? dataSet->FindField(name) : nullptr;
  return field ? std::optional(field->Value()) : std::nullopt;
}

struct SessionParameter {
  const char16_t* name;
  QString TLocalData::*value;
};
constexpr SessionParameter sessionParameters[] = {
    {u"BUSINESSGROUP_ID", &TLocalData::BGroupId},
    {u"COMPANY_ID", &TLocalData::CompanyId},
    {u"USER_ID", &TLocalData::UserId},
};

std::optional<QString> sessionParameter(const QString& name)
{
  for (const SessionParameter& parameter : sessionParameters)
    if (name.compare(QStringView(parameter.name), Qt::CaseInsensitive) == 0)
      return LocalData.*parameter.value;
  return std::nullopt;
}

std::optional<Variant> sqlParameter(const IBaseIntf* form, const QString& name)
{
  if (form)
    for (const NamedValue& parameter : form->GetSqlParams())
      if (parameter.name.compare(name, Qt::CaseInsensitive) == 0)
        return parameter.value;
  return std::nullopt;
}

Variant expandedValue(const QString& value, TClientDataSet* dataSet, const SelectorControl* control)
{
  Variant result = value;
  if (dataSet && value.contains(fieldOpener))
    if (const auto found = namedFieldValue(dataSet, macroName(value, fieldOpener)))
      return *found;
  const IBaseIntf* form = formOfDataSet(dataSet);
  if (form && value.contains(masterFieldMacro))
    if (const auto found = namedFieldValue(form->GetCdsMaster(), macroName(value, masterFieldMacro)))
      return *found;
  if (value.contains(parameterOpener)) {
    const QString name = macroName(value, parameterOpener);
    if (control && name == QLatin1String("OwnerValue")) {
      const QString text = control->Text();
      if (!text.isEmpty())
        return text;
      result = text;
    }
    if (const auto found = sessionParameter(name))
      result = *found;
  }
  if (value.contains(constOpener))
    result = macroName(value, constOpener);
  if (value.contains(sqlParamOpener))
    if (const auto found = sqlParameter(form, macroName(value, sqlParamOpener)))
      result = *found;
  return result;
}

}  // namespace

Variant ReturnFilterFieldValue(const QString& value, TClientDataSet* dataSet, const SelectorControl* control, QObject*)
{
  return raisingLogged(QStringLiteral("uKalvorUtils.ReturnFilterFieldValue"),
                       [&] { return expandedValue(value, dataSet, control); });
}

FilterArray BuildSelectorFilter(const QString& filterText, TClientDataSet* dataSet, const SelectorControl* control,
                                QObject* owner)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.BuildSelectorFilter"), [&] {
    FilterArray filter = BuildFilterFromStr(filterText);
    for (FilterRow& row : filter)
      row.value = ReturnFilterFieldValue(variantText(row.value), dataSet, control, owner);
    return filter;
  });
}

void RemoveSelectorFilterLinesWithFieldRels(TSelector& selector)
{
  for (TSelectorItem& item : selector.Items) {
    RemoveFilterLinesWithFieldRels(item.Filter);
    RemoveFilterLinesWithFieldRels(item.PublicFilter);
  }
}

}  // namespace kalvor
