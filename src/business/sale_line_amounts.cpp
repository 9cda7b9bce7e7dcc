#include "business/sale_line_amounts.h"

#include "business/sale_records.h"

namespace kalvor {

namespace {

constexpr const char16_t* valueFields[] = {u"TotalValue",     u"VATBaseAmount", u"VATValue",    u"TotalVAT",
                                           u"TotalValue_LCY", u"VatValue_LCY",  u"TotalVAT_LCY"};

}  // namespace

void UpdateSrvSaleVATAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.UpdateSaleVATAmounts", {header, line}, guard, [](const SaleRecords& r) {
    const Real totalPrice = r.lineValue(u"TotalPrice");
    const Real invoiceDiscount = r.lineValue(u"InvDiscAmount");
    if (roundedAmount(totalPrice) == roundedAmount(invoiceDiscount)) {
      for (const char16_t* name : valueFields)
        r.set(name, 0);
      return;
    }
    const Real percent = r.lineValue(u"VATPercent");
    const Real net = totalPrice - invoiceDiscount;
    const Real value = roundedAmount(r.pricesIncludeVat() ? net / r.vatFactor() : net);
    r.set(u"TotalValue", value);
    r.set(u"VATBaseAmount", value);
    const Real vat = roundedAmount(percent * value / 100);
    r.set(u"VATValue", vat);
    r.set(u"TotalVAT", value + vat);
    const Real local = roundedAmount(value * r.headerValue(u"CurrencyFactor"));
    r.set(u"TotalValue_LCY", local);
    const Real localVat = roundedAmount(percent / 100 * local);
    r.set(u"VatValue_LCY", localVat);
    r.set(u"TotalVAT_LCY", local + localVat);
  });
}

void CalcSrvSaleTotalAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.CalcSaleTotalAmounts", {header, line}, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real discount = r.lineValue(u"LineDiscountAmount");
    if (r.pricesIncludeVat()) {
      const Real netUnit = roundedPrice(r.lineValue(u"UnitPrice") / r.vatFactor());
      r.set(u"TotalPrice", roundedAmount(r.vatFactor() * roundedAmount(quantity * netUnit - discount)));
    } else {
      r.set(u"TotalPrice", roundedAmount(quantity * r.lineValue(u"UnitPrice") - discount));
    }
    UpdateSrvSaleVATAmounts(r.header, r.line, guard);
  });
}

void UpdateSrvSaleUnitCost(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.UpdateSaleUnitCost", {header, line}, guard, [](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real discount =
        quantity == 0 ? 0 : RoundUp(5, (r.lineValue(u"LineDiscountAmount") + r.lineValue(u"InvDiscAmount")) / quantity);
    const Real unitPrice = r.lineValue(u"UnitPrice");
    const Real cost =
        roundedPrice((r.headerVatFlagSet() ? roundedPrice(unitPrice / r.vatFactor()) : unitPrice) - discount);
    r.set(u"UnitCost_ACY", cost);
    const Real factor = r.headerValue(u"CurrencyFactor");
    const bool foreign = !r.header->FieldByName(u"Currency_Id")->AsString().isEmpty() && factor != 0;
    r.set(u"UnitCost_LCY", foreign ? roundedPrice(cost * factor) : cost);
  });
}

double SrvSaleGetCostWithoutVat(TClientDataSet* header, TClientDataSet* line)
{
  const SaleRecords r{header, line};
  const Real cost = r.lineValue(u"UnitCost_ACY");
  const bool includes = line->FieldByName(u"PriceIncludingVAT")->AsInteger() == 1;
  return static_cast<double>(roundedPrice(includes ? cost / r.vatFactor() : cost));
}

}  // namespace kalvor
