#include "server/pricing/price_conversion.h"

#include "server/pricing/currency_rate.h"
#include "server/pricing/exact_amount.h"

namespace kalvor::server {

namespace {

constexpr qint64 wholePercent = 100 * amountScale;

// False when the groups have no VAT set-up.
bool convertVat(Connection& db, const QString& companyId, const PricedItem& item, const LineRequest& request,
                bool includesVat, ExactAmount& amount)
{
  if (includesVat == request.priceIncludesVat) {
    return true;
  }
  const QString& product = request.vatProdGroupId.isEmpty() ? item.vatProdGroupId : request.vatProdGroupId;
  const auto percent = vatPercentOf(db, companyId, request.vatBusGroupId, product);
  if (!percent || *percent <= -wholePercent) {
    return false;
  }
  if (includesVat) {
    amount.multiply(wholePercent, wholePercent + *percent);
  } else {
    amount.multiply(wholePercent + *percent, wholePercent);
  }
  return true;
}

}  // namespace

ConvertedPrice convertPrice(Connection& db, const QString& companyId, const PricedItem& item, const LineUnits& units,
                            const LineRequest& request, const StatedPrice& stated)
{
  constexpr ConvertedPrice refused{LookupNoConversion, 0};
  ExactAmount amount(stated.price);
  amount.multiply(units.answered, stated.baseUnits);
  if (!stated.currencyId.isEmpty()) {
    const auto rate = currencyRate(db, companyId, item.localCurrency, stated.currencyId, request.date, 0);
    if (!rate) {
      return refused;
    }
    amount.multiply(*rate, amountScale);
  }
  if (request.currencyFactor > 0) {
    amount.multiply(amountScale, request.currencyFactor);
  }
  if (!convertVat(db, companyId, item, request, stated.includesVat, amount)) {
    return refused;
  }
  const auto price = amount.rounded(item.priceDecimals);
  return price ? ConvertedPrice{LookupFound, *price} : refused;
}

}  // namespace kalvor::server
