#include <span>

#include "rpc/rpc_error.h"
#include "server/operations/argument_values.h"
#include "server/operations/handlers.h"
#include "server/pricing/currency_rate.h"
#include "server/pricing/item_discount.h"
#include "server/pricing/item_price.h"

namespace kalvor::server {

namespace {

enum class Place : quint8 {
  Contragent, Code, Measure, Quantity, SubDocument, Date, BaseQuantity, VatBusGroup, VatProdGroup, IncludesVat,
  CurrencyFactor, LineType
};

// What stands where in the arrays of the lookups.
constexpr Place pricePlaces[] = {
    Place::Contragent,   Place::Code,        Place::Measure,      Place::Quantity,    Place::Date,
    Place::BaseQuantity, Place::VatBusGroup, Place::VatProdGroup, Place::IncludesVat, Place::CurrencyFactor,
    Place::LineType};
constexpr Place purchaseDiscountPlaces[] = {
    Place::Contragent, Place::Code, Place::Measure,      Place::Quantity, Place::SubDocument,
    Place::Date,       Place::BaseQuantity, Place::LineType};
constexpr Place saleDiscountPlaces[] = {
    Place::Contragent, Place::Code,         Place::Measure,     Place::Quantity,    Place::SubDocument,
    Place::Date,       Place::BaseQuantity, Place::IncludesVat, Place::VatBusGroup, Place::LineType};

void readPlace(LineRequest& request, Place place, const Variant& value)
{
  switch (place) {
    case Place::Contragent: request.contragentId = textArgument(value, QStringLiteral("контрагент")); return;
    case Place::Code: request.itemCode = textArgument(value, QStringLiteral("код на артикул")); return;
    case Place::Measure: request.measureId = textArgument(value, QStringLiteral("мярка")); return;
    case Place::Quantity: request.quantity = amountArgument(value, QStringLiteral("количество")); return;
    case Place::SubDocument: request.subDocumentCode = textArgument(value, QStringLiteral("тип документ")); return;
    case Place::Date: request.date = dateArgument(value, QStringLiteral("дата")); return;
    case Place::BaseQuantity:
      request.baseQuantity = amountArgument(value, QStringLiteral("количество в основна мярка"));
      return;
    case Place::VatBusGroup: request.vatBusGroupId = textArgument(value, QStringLiteral("ДДС група на контрагент")); return;
    case Place::VatProdGroup: request.vatProdGroupId = textArgument(value, QStringLiteral("ДДС група на артикул")); return;
    case Place::IncludesVat: request.priceIncludesVat = flagArgument(value, QStringLiteral("цени с ДДС")); return;
    case Place::CurrencyFactor: request.currencyFactor = amountArgument(value, QStringLiteral("курс")); return;
    case Place::LineType: request.lineType = wholeArgument(value, QStringLiteral("тип ред")); return;
  }
}

LineRequest lineRequest(const CallContext& call, LineSide side, std::span<const Place> places)
{
  const VariantArray values = call.arguments.at(0).toList();
  if (values.size() != qsizetype(places.size())) {
    throw RpcError(RpcError::BadArguments,
                   QStringLiteral("Заявката за цена или отстъпка трябва да има %1 стойности, а има %2.")
                       .arg(places.size()).arg(values.size()));
  }
  LineRequest request;
  request.side = side;
  for (qsizetype i = 0; i < values.size(); ++i) {
    readPlace(request, places[size_t(i)], values.at(i));
  }
  if (!request.date.isValid()) {
    request.date = call.core.today();
  }
  return request;
}

}  // namespace

Variant callGetSaleLinePrice(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  const PriceAnswer answer =
      findItemPrice(call.db, call.session.companyId, lineRequest(call, LineSide::Sale, pricePlaces));
  call.arguments[1] = answer.price;
  call.arguments[2] = int(answer.allowInvoiceDiscount);
  return int(answer.status);
}

Variant callGetPurchLinePrice(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  const PriceAnswer answer =
      findItemPrice(call.db, call.session.companyId, lineRequest(call, LineSide::Purchase, pricePlaces));
  call.arguments[1] = answer.price;
  return int(answer.status);
}

Variant callGetSaleLineDiscount(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  const DiscountAnswer answer =
      findItemDiscount(call.db, call.session.companyId, lineRequest(call, LineSide::Sale, saleDiscountPlaces));
  call.arguments[1] = answer.percent;
  call.arguments[2] = answer.specialPrice;
  return int(answer.status);
}

Variant callGetPurchLineDiscount(CallContext& call)
{
  const Transaction snapshot(call.db, false);
  const DiscountAnswer answer =
      findItemDiscount(call.db, call.session.companyId, lineRequest(call, LineSide::Purchase, purchaseDiscountPlaces));
  call.arguments[1] = answer.percent;
  return int(answer.status);
}

Variant callGetCurrencyRate(CallContext& call)
{
  constexpr int noRate = -1;
  const QString currency = call.text(0).trimmed();
  QDate day = dateArgument(call.arguments.at(1), QStringLiteral("дата"));
  if (!day.isValid()) {
    day = call.core.today();
  }
  const qint64 kind = wholeArgument(call.arguments.at(2), QStringLiteral("вид курс"));
  const QString& company = call.session.companyId;
  const auto rate = currencyRate(call.db, company, localCurrencyOf(call.db, company), currency, day, kind);
  call.arguments[3] = rate ? unscaled(*rate) : 0.0;
  return rate ? 0 : noRate;
}

}  // namespace kalvor::server
