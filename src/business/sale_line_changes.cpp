#include "business/sale_line_changes.h"

#include "business/sale_line_amounts.h"
#include "business/sale_lookups.h"

namespace kalvor {
namespace {

constexpr int percentDigits = 5;

void updateCostAndTotals(const SaleRecords& r, bool& guard)
{
  UpdateSrvSaleUnitCost(r.header, r.line, guard);
  CalcSrvSaleTotalAmounts(r.header, r.line, guard);
}

// A measure that holds nothing holds one.
void requireRatio(const SaleRecords& r)
{
  if (r.lineValue(u"QtyPerUnitOfMeasure") == 0)
    r.set(u"QtyPerUnitOfMeasure", 1);
}

void unitCostChanged(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("SaleUnitCost_ACYOnChange", {header, line}, guard, [](const SaleRecords& r) {
    if (roundedPrice(r.lineValue(u"UnitPrice")) == 0) {
      r.set(u"UnitCost_ACY", 0);
      r.set(u"UnitCost_LCY", 0);
      return;
    }
    const Real cost = roundedPrice(r.lineValue(u"UnitCost_ACY"));
    r.set(u"UnitCost_ACY", cost);
    r.set(u"UnitCost_LCY", roundedPrice(cost * r.headerValue(u"CurrencyFactor")));
    const Real net = r.headerVatFlagSet() ? roundedPrice(r.netUnitPrice()) : r.netUnitPrice();
    if (net != 0)
      r.set(u"LineDiscount", RoundUp(percentDigits, (net - cost) / net * 100));
  });
}

void productGroupChanged(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("SaleVATProdPostingGroupOnChange", {header, line}, guard, [&guard](const SaleRecords& r) {
    VatSetupLookup().apply(r);
    const Real cost = SrvSaleGetCostWithoutVat(r.header, r.line);
    const Real discount = r.lineValue(u"LineDiscount");
    const Real kept = 1 - discount / 100;
    if (RoundUp(percentDigits, discount) == 100)
      r.set(u"UnitPrice", 0);
    else
      r.set(u"UnitPrice", roundedPrice(r.pricesIncludeVat() ? cost / kept * r.vatFactor() : cost / kept));
    updateCostAndTotals(r, guard);
  });
}

// Compared at the precision that quantities are stored with: 0.1 and 0.2 are not more than 0.3.
void requireWithinQuantity(const SaleRecords& r, const char16_t* now, const char16_t* before)
{
  constexpr int storedDigits = 6;
  if (RoundUp(storedDigits, r.lineValue(now) + r.lineValue(before) - r.lineValue(u"Quantity")) > 0)
    throw DataError(
        QStringLiteral("Сбора от фактурираното и експедираното количество не може да надвишава количеството"));
}

}  // namespace

void SrvSaleDetailCodeOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress,
                               bool priceLookup)
{
  if (suppress)
    return;
  changeRoutine("uSaleCalculations.SaleDetailCodeOnChange", {header, line}, guard, [&](const SaleRecords& r) {
    if (lookUpLinePrice(r, priceLookup) == PriceLookup::Done)
      r.takeFromHeader(u"PriceIncludingVAT");
    r.set(u"QtyPerUnitOfMeasure", 1);
    updateCostAndTotals(r, guard);
  });
}

void SrvSaleQuantityOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress,
                             bool priceLookup)
{
  if (suppress)
    return;
  const auto follow = [&](const SaleRecords& r) {
    requireRatio(r);
    r.set(u"Quantity_Base", r.lineValue(u"Quantity") * r.lineValue(u"QtyPerUnitOfMeasure"));
    lookUpLinePrice(r, priceLookup);
  };
  if (changeRoutine("uSaleCalculations.SaleQuantityOnChange", {header, line}, guard, follow))
    SrvSaleLineDiscOnChange(header, line, guard);
}

void SrvSaleMeasureOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard, bool suppress, bool priceLookup)
{
  if (suppress)
    return;
  const auto follow = [&](const SaleRecords& r) { lookUpLinePrice(r, priceLookup, PricePer::BaseMeasure); };
  if (changeRoutine("uSaleCalculations.SaleMeasureOnChange", {header, line}, guard, follow))
    SrvSaleLineDiscOnChange(header, line, guard);
}

void SrvSaleQtyPerUnitOfMeasureOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("TfItemJournal.FielQtyPerUnitOnChange", {header, line}, guard, [](const SaleRecords& r) {
    requireRatio(r);
    const Real quantity = r.lineValue(u"Quantity");
    if (r.lineValue(u"Quantity_Base") == 0)
      r.set(u"Quantity_Base", quantity);
    const Real ratio = r.lineValue(u"QtyPerUnitOfMeasure");
    const Real oldRatio = quantity == 0 ? 0 : r.lineValue(u"Quantity_Base") / quantity;
    if (oldRatio != 0)
      r.set(u"UnitPrice", roundedPrice(ratio / oldRatio * r.lineValue(u"UnitPrice")));
    r.set(u"Quantity_Base", quantity * ratio);
  });
}

void SrvSaleLineDiscOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleLineDiscOnChange", {header, line}, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real unitPrice = r.lineValue(u"UnitPrice");
    const Real percent = r.lineValue(u"LineDiscount");
    if (RoundUp(percentDigits, quantity) == 0 || roundedPrice(unitPrice) == 0 || roundedPrice(percent) == 0)
      r.set(u"LineDiscountAmount", 0);
    else
      r.set(u"LineDiscountAmount", roundedPrice(r.netUnitPrice() * quantity * (percent / 100)));
    r.set(u"InvDiscAmount", 0);
    updateCostAndTotals(r, guard);
  });
}

void SrvSaleLineDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleLineDiscAmntOnChange", {header, line}, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    if (r.lineValue(u"UnitPrice") == 0 || quantity == 0)
      r.set(u"LineDiscount", 0);
    else
      r.set(u"LineDiscount", r.lineValue(u"LineDiscountAmount") * 100 / (quantity * r.netUnitPrice()));
    r.set(u"InvDiscAmount", 0);
    updateCostAndTotals(r, guard);
  });
}

void SrvSaleInvDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleInvDiscAmntOnChange", {header, line}, guard,
                [&guard](const SaleRecords& r) { updateCostAndTotals(r, guard); });
}

void SrvSaleTotalPriceOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  if (guard)
    return;
  {
    const GuardScope scope(guard, false);
    const SaleRecords r{header, line};
    const Real total = roundedAmount(r.lineValue(u"TotalPrice"));
    r.set(u"TotalPrice", total);
    r.set(u"LineDiscountAmount", roundedPrice(r.lineValue(u"Quantity") * r.lineValue(u"UnitPrice") - total));
  }
  SrvSaleLineDiscAmntOnChange(header, line, guard);
}

void SrvSaleUnitCost_ACYOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  unitCostChanged(header, line, guard);
}

void SrvSaleUnitCost_LCYOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  unitCostChanged(header, line, guard);
}

void SrvSaleVATProdPostingGroupOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  productGroupChanged(header, line, guard);
}

void SrvSaleGenProdPostingGroupOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  productGroupChanged(header, line, guard);
}

void SrvSaleValidateQuantityShipped(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  if (!guard)
    requireWithinQuantity({header, line}, u"QtyToShip", u"ShippedQty");
}

void SrvSaleValidateQuantityInvoiced(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  if (!guard)
    requireWithinQuantity({header, line}, u"QtyToInvoice", u"InvoicedQty");
}

}  // namespace kalvor
