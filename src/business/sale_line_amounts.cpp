#include "business/sale_line_amounts.h"

#include "common/rounding.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {

namespace {

using Real = long double;

// One routine's look at the records; missing fields raise.
struct SaleRecords {
  TClientDataSet* header;
  TClientDataSet* line;

  Real lineValue(const char16_t* name) const { return line->FieldByName(QStringView(name))->AsFloat(); }
  Real headerValue(const char16_t* name) const { return header->FieldByName(QStringView(name))->AsFloat(); }
  void set(const char16_t* name, Real value) const
  {
    line->FieldByName(QStringView(name))->SetAsFloat(static_cast<double>(value));
  }
  bool pricesIncludeVat() const { return header->FieldByName(u"PriceIncludingVAT")->AsInteger() == 1; }
  bool headerVatFlagSet() const { return header->FieldByName(u"PriceIncludingVAT")->AsInteger() != 0; }
  Real vatFactor() const { return 1 + lineValue(u"VATPercent") / 100; }
};

Real amount(Real value) { return RoundUp(qint8(LocalData.PrecisionAmount), value); }
Real price(Real value) { return RoundUp(qint8(LocalData.PrecisionPrice), value); }

class GuardScope {
 public:
  GuardScope(bool& guard, bool after) : guard_(guard), after_(after) { guard_ = true; }
  ~GuardScope() { guard_ = after_; }
  GuardScope(const GuardScope&) = delete;
  GuardScope& operator=(const GuardScope&) = delete;

 private:
  bool& guard_;
  bool after_;
};

template <class Body>
void logged(const char* routine, Body body)
{
  try {
    body();
  } catch (const DataError& error) {
    LogError(error.message(), QLatin1String(routine));
  } catch (const std::exception& error) {
    LogError(QString::fromUtf8(error.what()), QLatin1String(routine));
  }
}

// A shared step: the guard is as before afterwards.
template <class Body>
void sharedStep(const char* routine, TClientDataSet* header, TClientDataSet* line, bool& guard, Body body)
{
  const GuardScope scope(guard, guard);
  logged(routine, [&] { body(SaleRecords{header, line}); });
}

// A change routine: nothing while the guard is set, and clear afterwards.
template <class Body>
void changeRoutine(const char* routine, TClientDataSet* header, TClientDataSet* line, bool& guard, Body body)
{
  if (guard)
    return;
  const GuardScope scope(guard, false);
  logged(routine, [&] { body(SaleRecords{header, line}); });
}

constexpr const char16_t* valueFields[] = {u"TotalValue",     u"VATBaseAmount", u"VATValue",    u"TotalVAT",
                                           u"TotalValue_LCY", u"VatValue_LCY",  u"TotalVAT_LCY"};

}  // namespace

void UpdateSrvSaleVATAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.UpdateSaleVATAmounts", header, line, guard, [](const SaleRecords& r) {
    const Real totalPrice = r.lineValue(u"TotalPrice");
    const Real invoiceDiscount = r.lineValue(u"InvDiscAmount");
    if (amount(totalPrice) == amount(invoiceDiscount)) {
      for (const char16_t* name : valueFields)
        r.set(name, 0);
      return;
    }
    const Real percent = r.lineValue(u"VATPercent");
    const Real net = totalPrice - invoiceDiscount;
    const Real value = amount(r.pricesIncludeVat() ? net / r.vatFactor() : net);
    r.set(u"TotalValue", value);
    r.set(u"VATBaseAmount", value);
    const Real vat = amount(percent * value / 100);
    r.set(u"VATValue", vat);
    r.set(u"TotalVAT", value + vat);
    const Real local = amount(value * r.headerValue(u"CurrencyFactor"));
    r.set(u"TotalValue_LCY", local);
    const Real localVat = amount(percent / 100 * local);
    r.set(u"VatValue_LCY", localVat);
    r.set(u"TotalVAT_LCY", local + localVat);
  });
}

void CalcSrvSaleTotalAmounts(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.CalcSaleTotalAmounts", header, line, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real discount = r.lineValue(u"LineDiscountAmount");
    if (r.pricesIncludeVat()) {
      const Real netUnit = price(r.lineValue(u"UnitPrice") / r.vatFactor());
      r.set(u"TotalPrice", amount(r.vatFactor() * amount(quantity * netUnit - discount)));
    } else {
      r.set(u"TotalPrice", amount(quantity * r.lineValue(u"UnitPrice") - discount));
    }
    UpdateSrvSaleVATAmounts(r.header, r.line, guard);
  });
}

void UpdateSrvSaleUnitCost(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  sharedStep("uSaleCalculations.UpdateSaleUnitCost", header, line, guard, [](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real discount =
        quantity == 0 ? 0 : RoundUp(5, (r.lineValue(u"LineDiscountAmount") + r.lineValue(u"InvDiscAmount")) / quantity);
    const Real unitPrice = r.lineValue(u"UnitPrice");
    const Real cost = price((r.headerVatFlagSet() ? price(unitPrice / r.vatFactor()) : unitPrice) - discount);
    r.set(u"UnitCost_ACY", cost);
    const Real factor = r.headerValue(u"CurrencyFactor");
    const bool foreign = !r.header->FieldByName(u"Currency_Id")->AsString().isEmpty() && factor != 0;
    r.set(u"UnitCost_LCY", foreign ? price(cost * factor) : cost);
  });
}

double SrvSaleGetCostWithoutVat(TClientDataSet* header, TClientDataSet* line)
{
  const SaleRecords r{header, line};
  const Real cost = r.lineValue(u"UnitCost_ACY");
  const bool includes = line->FieldByName(u"PriceIncludingVAT")->AsInteger() == 1;
  return static_cast<double>(price(includes ? cost / r.vatFactor() : cost));
}

void SrvSaleLineDiscOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleLineDiscOnChange", header, line, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real unitPrice = r.lineValue(u"UnitPrice");
    const Real percent = r.lineValue(u"LineDiscount");
    if (RoundUp(5, quantity) == 0 || price(unitPrice) == 0 || price(percent) == 0)
      r.set(u"LineDiscountAmount", 0);
    else if (r.headerVatFlagSet())
      r.set(u"LineDiscountAmount", price((unitPrice / r.vatFactor()) * quantity * (percent / 100)));
    else
      r.set(u"LineDiscountAmount", price(quantity * unitPrice * (percent / 100)));
    r.set(u"InvDiscAmount", 0);
    UpdateSrvSaleUnitCost(r.header, r.line, guard);
    CalcSrvSaleTotalAmounts(r.header, r.line, guard);
  });
}

void SrvSaleLineDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleLineDiscAmntOnChange", header, line, guard, [&guard](const SaleRecords& r) {
    const Real quantity = r.lineValue(u"Quantity");
    const Real unitPrice = r.lineValue(u"UnitPrice");
    if (unitPrice == 0 || quantity == 0)
      r.set(u"LineDiscount", 0);
    else
      r.set(u"LineDiscount", r.lineValue(u"LineDiscountAmount") * 100 /
                                 (quantity * (r.headerVatFlagSet() ? unitPrice / r.vatFactor() : unitPrice)));
    r.set(u"InvDiscAmount", 0);
    UpdateSrvSaleUnitCost(r.header, r.line, guard);
    CalcSrvSaleTotalAmounts(r.header, r.line, guard);
  });
}

void SrvSaleInvDiscAmntOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleInvDiscAmntOnChange", header, line, guard, [&guard](const SaleRecords& r) {
    UpdateSrvSaleUnitCost(r.header, r.line, guard);
    CalcSrvSaleTotalAmounts(r.header, r.line, guard);
  });
}

void SrvSaleTotalPriceOnChange(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  if (guard)
    return;
  {
    const GuardScope scope(guard, false);
    const SaleRecords r{header, line};
    const Real total = amount(r.lineValue(u"TotalPrice"));
    r.set(u"TotalPrice", total);
    r.set(u"LineDiscountAmount", price(r.lineValue(u"Quantity") * r.lineValue(u"UnitPrice") - total));
  }
  SrvSaleLineDiscAmntOnChange(header, line, guard);
}

void recalculateSaleLine(TClientDataSet* header, TClientDataSet* line, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleQuantityOnChange", header, line, guard, [](const SaleRecords& r) {
    if (r.lineValue(u"QtyPerUnitOfMeasure") == 0)
      r.set(u"QtyPerUnitOfMeasure", 1);
    r.set(u"Quantity_Base", r.lineValue(u"Quantity") * r.lineValue(u"QtyPerUnitOfMeasure"));
  });
  SrvSaleLineDiscOnChange(header, line, guard);
}

}  // namespace kalvor
