#include "server/checks/unit_cost.h"

#include <QHash>

#include "server/pricing/exact_amount.h"
#include "server/rights/row_security.h"

namespace kalvor::server {

namespace {

constexpr int kindSaleInvoice = 0;

bool isVisibleInvoice(const Access& access, const QString& documentId)
{
  const TableInfo& table = *access.metadata.catalogue().table(u"D_SaleInvoiceHeader");
  const Fragment visible = allOf({Fragment{QStringLiteral("D_SaleInvoiceHeader.Id = ? AND D_SaleInvoiceHeader.Comp_Id = ?"),
                                           {documentId, access.session.companyId}},
                                  tableSecurity(access, table, table.name)});
  return !isNull(access.db.value(QStringLiteral("SELECT D_SaleInvoiceHeader.Id FROM D_SaleInvoiceHeader WHERE ") +
                                 visible.sql, visible.values));
}

bool isBelow(qint64 unitPrice, const AverageCost& average, qint64 quantityPerUnit, int decimals)
{
  ExactAmount cost(average.cost);
  cost.multiply(amountScale, average.quantity).multiply(quantityPerUnit > 0 ? quantityPerUnit : amountScale, amountScale);
  const auto rounded = cost.roundedMillionths(decimals);
  return rounded && unitPrice < *rounded;
}

}  // namespace

AverageCost averageCost(Connection& db, const QString& companyId, const QString& itemId, qint64 unitCost,
                        const QDate& day)
{
  auto row = db.prepare(QStringLiteral("SELECT SUM(CostAmount), SUM(Quantity) FROM G_ItemValueEntry "
                                       "WHERE Comp_Id = ? AND Item_Id = ? AND PostingDate <= ?"));
  row->bind(0, companyId);
  row->bind(1, itemId);
  row->bind(2, day);
  if (row->step() && row->integer(1) > 0) {
    return {row->integer(0), row->integer(1)};
  }
  return {unitCost, amountScale};
}

UnitCostVerdict checkItemUnitCost(const Access& access, const QString& documentId, int kind, const QDate& today)
{
  if (kind != kindSaleInvoice || !isVisibleInvoice(access, documentId)) {
    return UnitCostVerdict::Unknown;
  }
  const QString& companyId = access.session.companyId;
  const Variant decimals =
      access.db.value(QStringLiteral("SELECT PrecisionPrice FROM C_CompanySetup WHERE Id = ?"), {companyId});
  auto lines = access.db.prepare(QStringLiteral(
      "SELECT N_Item.Id, N_Item.UnitCost, D_SaleInvoiceLine.UnitCost_LCY, D_SaleInvoiceLine.QtyPerUnitOfMeasure "
      "FROM D_SaleInvoiceLine JOIN N_Item ON N_Item.Comp_Id = ? AND N_Item.Code = D_SaleInvoiceLine.Code "
      "WHERE D_SaleInvoiceLine.Master_Id = ? AND D_SaleInvoiceLine.Type = 1"));
  lines->bind(0, companyId);
  lines->bind(1, documentId);
  QHash<QString, AverageCost> costs;
  while (lines->step()) {
    const QString itemId = lines->text(0);
    auto cost = costs.constFind(itemId);
    if (cost == costs.cend()) {
      cost = costs.insert(itemId, averageCost(access.db, companyId, itemId, lines->integer(1), today));
    }
    if (isBelow(lines->integer(2), *cost, lines->integer(3), isNull(decimals) ? 5 : decimals.toInt())) {
      return UnitCostVerdict::Below;
    }
  }
  return UnitCostVerdict::Clear;
}

}  // namespace kalvor::server
