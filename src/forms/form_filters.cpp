#include "forms/form_filters.h"

#include <algorithm>

#include "filters/filter_expression.h"
#include "filters/filter_macros.h"

namespace kalvor {

FilterArray callerWithSecurityFilter(const FilterArray& caller, const FilterArray& security)
{
  return GetAllFilter(caller, security);
}

FilterArray buildRequestFilter(const FilterArray& callerWithSecurity, const FilterArray& formFilter)
{
  return GetAllFilter(formFilter, callerWithSecurity);
}

FilterArray noRowFilter()
{
  return {FilterRow{QStringLiteral("1"), QStringLiteral("="), 2, {}, {}}};
}

FilterArray recordFilter(const QString& fieldName, const Variant& value)
{
  return {FilterRow{fieldName, QStringLiteral("="), value, {}, {}}};
}

DefaultFilterDecision decideDefaultFilter(const QString& defaultFilterText, const FilterArray& formFilter,
                                          ShowOption options)
{
  if (!formFilter.isEmpty() || options.testFlag(so_SelectSingle) || options.testFlag(so_SelectMulty) ||
      defaultFilterText.isEmpty())
    return {};
  if (!defaultFilterText.contains(QStringLiteral("<#Param(USER_FILTER")))
    return {DefaultFilterDecision::Kind::Use, BuildFilterFromStr(defaultFilterText, ConvertSimleParamFilterValues)};
  QString text = defaultFilterText;
  text.replace(QStringLiteral("<#Param(USER_FILTER)#>"), QStringLiteral(","));
  return {DefaultFilterDecision::Kind::AskUser,
          GetAllFilter(BuildFilterFromStr(text, ConvertSimleParamFilterValues), formFilter)};
}

FilterArray mergeFormFilter(const FilterArray& current, const FilterArray& publicFilter, bool merge)
{
  if (!merge || current.isEmpty())
    return publicFilter;
  FilterArray result;
  for (FilterRow row : current) {
    // A row without a field name never matches another.
    const bool replaced = !row.field.isEmpty() &&
                          std::any_of(publicFilter.begin(), publicFilter.end(),
                                      [&](const FilterRow& added) { return added.field == row.field; });
    if (replaced)
      continue;
    if (row.conjunction.isEmpty())
      row.conjunction = QStringLiteral("AND");
    result.append(row);
  }
  return result + publicFilter;
}

}  // namespace kalvor
