#include "business/vat_totals.h"

#include "common/rounding.h"

namespace kalvor {

void TVATTotals::addToTotals(const TVATGroupInfo& info, int sign)
{
  TotalValue += sign * info.TotalValue;
  VATValue += sign * info.VATValue;
  TotalVAT += sign * info.TotalVAT;
  CRN_TotalValue += sign * info.CRN_TotalValue;
  CRN_VATValue += sign * info.CRN_VATValue;
  CRN_TotalVAT += sign * info.CRN_TotalVAT;
}

void TVATTotals::AddVATGroups(const QString& group, double vatPercent, double value, double valueInDocumentCurrency)
{
  qsizetype at = 0;
  while (at < groups_.size() && groups_[at].name != group)
    ++at;
  if (at == groups_.size()) {
    groups_.append({group, {}});
    groups_[at].info.VATPercent = vatPercent;
  }
  TVATGroupInfo& info = groups_[at].info;
  addToTotals(info, -1);
  const auto vatOf = [&](double base) {
    return static_cast<double>(RoundUp(decimals_, static_cast<long double>(info.VATPercent) * base / 100));
  };
  info.TotalValue += value;
  info.CRN_TotalValue += valueInDocumentCurrency;
  info.VATValue = vatOf(info.TotalValue);
  info.CRN_VATValue = vatOf(info.CRN_TotalValue);
  info.TotalVAT = info.TotalValue + info.VATValue;
  info.CRN_TotalVAT = info.CRN_TotalValue + info.CRN_VATValue;
  addToTotals(info, 1);
}

void TVATTotals::ClearVATGroups()
{
  groups_.clear();
  TotalValue = VATValue = TotalVAT = CRN_TotalValue = CRN_VATValue = CRN_TotalVAT = 0;
}

double TVATTotals::ValueByName(const QString& name) const
{
  struct Row {
    const char* name;
    double TVATTotals::* member;
  };
  static constexpr Row rows[] = {
      {"TOTALVALUE", &TVATTotals::TotalValue},         {"VATVALUE", &TVATTotals::VATValue},
      {"TOTALVAT", &TVATTotals::TotalVAT},             {"CRN_TOTALVALUE", &TVATTotals::CRN_TotalValue},
      {"CRN_VATVALUE", &TVATTotals::CRN_VATValue},     {"CRN_TOTALVAT", &TVATTotals::CRN_TotalVAT},
  };
  const QString wanted = name.toUpper();
  for (const Row& row : rows)
    if (wanted == QLatin1String(row.name))
      return this->*row.member;
  return 0;
}

}  // namespace kalvor
