#include "server/pricing/line_request.h"

namespace kalvor::server {

std::optional<PricedItem> findPricedItem(Connection& db, const QString& companyId, const LineRequest& request)
{
  auto row = db.prepare(QStringLiteral(
      "SELECT N_Item.Id, N_Item.Measure_Id, N_Item.ItemGroup_Id, N_Item.VATProdPostGroup_Id, N_Item.UnitPrice, "
      "N_Item.UnitCost, C_CompanySetup.PrecisionPrice, C_CompanySetup.Currency_LCY "
      "FROM N_Item JOIN C_CompanySetup ON C_CompanySetup.Id = N_Item.Comp_Id "
      "WHERE N_Item.Comp_Id = ? AND N_Item.Code = ? ORDER BY N_Item.Id LIMIT 1"));
  row->bind(0, companyId);
  row->bind(1, request.itemCode);
  if (!row->step()) {
    return {};
  }
  PricedItem item{row->text(0), row->text(1), row->text(2), row->text(3), {}, int(row->integer(6)), row->text(7)};
  const int price = request.side == LineSide::Sale ? 4 : 5;
  if (row->integer(price) > 0) {
    item.listPrice = row->integer(price);
  }
  return item;
}

Variant priceGroupOf(Connection& db, const QString& companyId, const QString& contragentId)
{
  return contragentId.isEmpty()
             ? Variant()
             : db.value(QStringLiteral("SELECT PriceGroup_Id FROM N_Contragent WHERE Id = ? AND Comp_Id = ?"),
                        {contragentId, companyId});
}

std::optional<qint64> vatPercentOf(Connection& db, const QString& companyId, const QString& businessGroupId,
                                   const QString& productGroupId)
{
  auto row = db.prepare(QStringLiteral("SELECT VATPercent FROM G_VATPostingSetup WHERE Comp_Id = ? AND "
                                       "VATBus_PostingGroup = ? AND VATProd_PostingGroup = ?"));
  row->bind(0, companyId);
  row->bind(1, businessGroupId);
  row->bind(2, productGroupId);
  return row->step() ? std::optional(row->integer(0)) : std::nullopt;
}

}  // namespace kalvor::server
