#include "server/pricing/item_discount.h"

#include <tuple>

#include "server/pricing/nearness.h"
#include "server/pricing/price_conversion.h"

namespace kalvor::server {

namespace {

struct DiscountRow {
  Nearness nearness = Nearness::Everybody;
  qint64 closeness = 0;  // 0 the item itself, -1 its group, -2 that group's parent ...
  bool ownSubDocument = false;
  bool ownMeasure = false;
  qint64 minQuantity = 0;
  QString start, id;
  qint64 percent = 0;
  qint64 specialPrice = 0;

  auto rank() const
  {
    return std::tie(nearness, closeness, ownSubDocument, ownMeasure, minQuantity, start, id);
  }
};

// The item's group and those above it; a circle of parents ends somewhere.
const QString groupsAbove = QStringLiteral(
    "WITH RECURSIVE Above (Id, Depth) AS (SELECT CAST(? AS TEXT) COLLATE \"KALVOR\", 1 UNION ALL SELECT N_ItemGroup.Parent_Id, Above.Depth + 1 "
    "FROM Above JOIN N_ItemGroup ON N_ItemGroup.Id = Above.Id AND N_ItemGroup.Comp_Id = ? "
    "WHERE N_ItemGroup.Parent_Id IS NOT NULL AND Above.Depth < 16) ");

Fragment matchingRows(const QString& depth, const QString& tables, const Fragment& target, const Fragment& whose,
                const Fragment& suitable)
{
  return Fragment{QStringLiteral("SELECT Contragent_Id, PriceGroup_Id, %1, SubDocument_Id, Measure_Id, MinQuantity, "
                                 "StartDate, N_ItemDiscount.Id, DiscountPercent, SpecialPrice FROM %2 WHERE ")
                      .arg(depth, tables), {}} +
         target + QStringLiteral(" AND ") + whose + suitable;
}

Fragment discountRows(const QString& companyId, const PricedItem& item, const LineUnits& units,
                      const LineRequest& request, const Variant& priceGroup)
{
  const int side = int(request.side);
  const Fragment ofItem{QStringLiteral("Comp_Id = ? AND Item_Id = ? AND Side = ?"), {companyId, item.id, side}};
  const Fragment ofGroup{QStringLiteral("N_ItemDiscount.ItemGroup_Id = Above.Id AND Comp_Id = ? AND Side = ? AND "
                                        "Item_Id IS NULL"), {companyId, side}};
  const Fragment suitable =
      Fragment{QStringLiteral(" AND (Measure_Id IS NULL OR Measure_Id = ?) AND (SubDocument_Id IS NULL OR SubDocument_Id IN "
                              "(SELECT N_SubDocument.Id FROM N_SubDocument WHERE N_SubDocument.Comp_Id = ? AND "
                              "N_SubDocument.Code = ?))"),
               {units.measureId, companyId, request.subDocumentCode}} +
      validOn(request.date);
  QList<Fragment> whose{ofEverybody(priceGroup)};
  if (!request.contragentId.isEmpty()) {
    whose.append(ofContragent(request.contragentId));
  }
  Fragment sql{groupsAbove, {item.groupId, companyId}};
  const QString byGroup = QStringLiteral("Above CROSS JOIN N_ItemDiscount");
  for (const Fragment& of : std::as_const(whose)) {
    const QLatin1StringView join(&of == &whose.first() ? "" : " UNION ALL ");
    sql += join + matchingRows(QStringLiteral("0"), QStringLiteral("N_ItemDiscount"), ofItem, of, suitable) +
           QStringLiteral(" UNION ALL ") + matchingRows(QStringLiteral("Above.Depth"), byGroup, ofGroup, of, suitable);
  }
  return sql;
}

std::optional<DiscountRow> nearestDiscount(Connection& db, const LineUnits& units, const Fragment& sql)
{
  auto rows = db.prepare(sql.sql);
  for (int i = 0; i < sql.values.size(); ++i) {
    rows->bind(i, sql.values.at(i));
  }
  std::optional<DiscountRow> best;
  while (rows->step()) {
    DiscountRow row{nearnessOf(!rows->isNull(0), !rows->isNull(1)), -rows->integer(2), !rows->isNull(3),
                    !rows->isNull(4), rows->integer(5), rows->text(6), rows->text(7), rows->integer(8),
                    rows->integer(9)};
    const bool reached = row.minQuantity <= (row.ownMeasure ? units.quantity : units.baseQuantity);
    if ((reached || row.minQuantity <= 0) && (!best || best->rank() < row.rank())) {
      best = std::move(row);
    }
  }
  return best;
}

}  // namespace

DiscountAnswer findItemDiscount(Connection& db, const QString& companyId, const LineRequest& request)
{
  const auto item = request.takesPrice() ? findPricedItem(db, companyId, request) : std::nullopt;
  if (!item) {
    return {LookupUnknownItem, 0, 0};
  }
  const LineUnits units = lineUnits(db, companyId, *item, request);
  const Variant priceGroup = priceGroupOf(db, companyId, request.contragentId);
  const auto row = nearestDiscount(db, units, discountRows(companyId, *item, units, request, priceGroup));
  DiscountAnswer answer;
  if (!row) {
    return answer;
  }
  answer.percent = unscaled(row->percent);
  if (request.side == LineSide::Purchase) {
    answer.status = row->percent > 0 ? LookupSpecial : LookupFound;
  } else if (row->specialPrice > 0) {
    const StatedPrice stated{row->specialPrice, row->ownMeasure ? units.perMeasure : amountScale, {}, false};
    const ConvertedPrice converted = convertPrice(db, companyId, *item, units, request, stated);
    if (converted.status != LookupFound) {
      return {converted.status, 0, 0};
    }
    answer.status = LookupSpecial;
    answer.specialPrice = converted.price;
  }
  return answer;
}

}  // namespace kalvor::server
