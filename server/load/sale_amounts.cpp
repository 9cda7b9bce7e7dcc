#include "server/load/sale_amounts.h"

#include <cmath>

#include "server/store/connection.h"

namespace kalvor::server {

double roundUp(int decimals, long double value)
{
  constexpr long double largest = 9223372036854775806.0L;
  if (decimals < 0) {
    return double(value);
  }
  long double moved = value;
  for (int i = 0; i < decimals; ++i) {
    moved *= 10;
  }
  if (std::fabs(moved * 10) > largest) {
    return double(value);
  }
  const long double whole = std::trunc(moved);
  const auto dropped = std::llabs(qint64(std::trunc(moved * 10))) % 10;
  long double rounded = dropped < 5 ? whole : moved >= 0 ? whole + 1 : whole - 1;
  for (int i = 0; i < decimals; ++i) {
    rounded /= 10;
  }
  return double(rounded);
}

SaleLineAmounts saleLineAmounts(const SaleLineInput& line, const SaleRules& rules)
{
  const int amount = rules.amountDecimals;
  const int price = rules.priceDecimals;
  const long double quantity = unscaled(line.quantity);
  const long double unitPrice = unscaled(line.unitPrice);
  const long double discount = unscaled(line.discountPercent);
  const long double percent = unscaled(line.vatPercent);
  const long double factor = unscaled(line.currencyFactor);
  const long double gross = 1 + percent / 100;
  const bool included = line.priceIncludesVat;

  const bool nothing = roundUp(5, quantity) == 0 || roundUp(price, unitPrice) == 0 || roundUp(price, discount) == 0;
  const double discountAmount = nothing ? 0
      : included ? roundUp(price, unitPrice / gross * quantity * (discount / 100))
                 : roundUp(price, quantity * unitPrice * (discount / 100));
  const double netUnit = included ? roundUp(price, unitPrice / gross) : double(unitPrice);
  const double net = roundUp(amount, quantity * netUnit - discountAmount);
  const double totalPrice = included ? roundUp(amount, gross * net) : net;
  const double perUnit = quantity == 0 ? 0 : roundUp(5, discountAmount / quantity);
  const double unitCost = roundUp(price, netUnit - static_cast<long double>(perUnit));

  SaleLineAmounts result;
  result.lineDiscountAmount = scaled(discountAmount);
  result.totalPrice = scaled(totalPrice);
  result.unitCost = scaled(unitCost);
  result.unitCostLcy = scaled(line.foreignCurrency && factor != 0 ? roundUp(price, unitCost * factor) : unitCost);
  if (roundUp(amount, totalPrice) == 0) {
    return result;
  }
  const double value = included ? roundUp(amount, totalPrice / gross) : roundUp(amount, totalPrice);
  const double valueLcy = roundUp(amount, value * factor);
  result.totalValue = scaled(value);
  result.vatValue = scaled(roundUp(amount, percent * value / 100));
  result.totalVat = result.totalValue + result.vatValue;
  result.totalValueLcy = scaled(valueLcy);
  result.vatValueLcy = scaled(roundUp(amount, percent / 100 * valueLcy));
  result.totalVatLcy = result.totalValueLcy + result.vatValueLcy;
  return result;
}

void SaleTotalsBuilder::add(qint64 vatPercent, qint64 totalValue, qint64 totalValueLcy)
{
  Group& group = groups_[vatPercent];
  group.value += totalValue;
  group.valueLcy += totalValueLcy;
}

SaleTotals SaleTotalsBuilder::totals(const SaleRules& rules) const
{
  SaleTotals sums;
  for (const auto& [percent, group] : groups_) {
    const auto vat = [&](qint64 value) {
      return scaled(roundUp(rules.amountDecimals, static_cast<long double>(unscaled(percent)) * unscaled(value) / 100));
    };
    sums.totalValue += group.value;
    sums.totalValueLcy += group.valueLcy;
    sums.vatValue += vat(group.value);
    sums.vatValueLcy += vat(group.valueLcy);
  }
  sums.totalVat = sums.totalValue + sums.vatValue;
  sums.totalVatLcy = sums.totalValueLcy + sums.vatValueLcy;
  return sums;
}

}  // namespace kalvor::server
