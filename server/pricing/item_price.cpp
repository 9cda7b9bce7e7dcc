#include "server/pricing/item_price.h"

#include <tuple>

#include "server/pricing/nearness.h"
#include "server/pricing/price_conversion.h"
#include "server/sql/fragment.h"

namespace kalvor::server {

namespace {

struct PriceRow {
  Nearness nearness = Nearness::Everybody;
  bool ownMeasure = false;
  qint64 minQuantity = 0;
  QString start, id, currencyId;
  qint64 price = 0;
  bool includesVat = false;
  bool allowInvoiceDiscount = false;

  auto rank() const { return std::tie(nearness, ownMeasure, minQuantity, start, id); }
};

Fragment priceRows(const QString& companyId, const PricedItem& item, const LineUnits& units,
                   const LineRequest& request, const Fragment& whose)
{
  return Fragment{QStringLiteral("SELECT Contragent_Id, PriceGroup_Id, Measure_Id, MinQuantity, StartDate, Id, "
                                 "Currency_Id, UnitPrice, PriceIncludingVAT, AllowInvoiceDisc FROM N_ItemPrice "
                                 "WHERE Comp_Id = ? AND Item_Id = ? AND Side = ? AND Measure_Id IN (?, ?) AND "),
                  {companyId, item.id, int(request.side), units.measureId, item.measureId}} +
         whose + validOn(request.date);
}

std::optional<PriceRow> nearestPrice(Connection& db, const QString& companyId, const PricedItem& item,
                                     const LineUnits& units, const LineRequest& request)
{
  const Variant priceGroup = priceGroupOf(db, companyId, request.contragentId);
  const Fragment everybody = priceRows(companyId, item, units, request, ofEverybody(priceGroup));
  const Fragment all = request.contragentId.isEmpty()
                           ? everybody
                           : priceRows(companyId, item, units, request, ofContragent(request.contragentId)) +
                                 QStringLiteral(" UNION ALL ") + everybody;
  auto rows = db.prepare(all.sql);
  for (int i = 0; i < all.values.size(); ++i) {
    rows->bind(i, all.values.at(i));
  }
  std::optional<PriceRow> best;
  while (rows->step()) {
    const bool ownMeasure = rows->text(2).compare(units.measureId, Qt::CaseInsensitive) == 0;
    PriceRow row{nearnessOf(!rows->isNull(0), !rows->isNull(1)), ownMeasure, rows->integer(3), rows->text(4),
                 rows->text(5), rows->text(6), rows->integer(7), rows->integer(8) == 1, rows->integer(9) == 1};
    const bool reached = row.minQuantity <= (ownMeasure ? units.quantity : units.baseQuantity);
    if ((reached || row.minQuantity <= 0) && (!best || best->rank() < row.rank())) {
      best = std::move(row);
    }
  }
  return best;
}

}  // namespace

PriceAnswer findItemPrice(Connection& db, const QString& companyId, const LineRequest& request)
{
  const auto item = request.takesPrice() ? findPricedItem(db, companyId, request) : std::nullopt;
  if (!item) {
    return {LookupUnknownItem, 0, false};
  }
  const LineUnits units = lineUnits(db, companyId, *item, request);
  StatedPrice stated;
  PriceAnswer answer;
  if (const auto row = nearestPrice(db, companyId, *item, units, request)) {
    stated = {row->price, row->ownMeasure ? units.perMeasure : amountScale, row->currencyId, row->includesVat};
    answer.allowInvoiceDiscount = row->allowInvoiceDiscount;
  } else if (item->listPrice) {
    stated.price = *item->listPrice;
    answer.allowInvoiceDiscount = true;
  } else {
    return answer;
  }
  const ConvertedPrice converted = convertPrice(db, companyId, *item, units, request, stated);
  answer.status = converted.status;
  answer.price = converted.price;
  answer.allowInvoiceDiscount = answer.allowInvoiceDiscount && converted.status == LookupFound;
  return answer;
}

}  // namespace kalvor::server
