// What the sale routines share: a look at the current records, the guard's handling, errors to the log. Internal.
#pragma once

#include "common/rounding.h"
#include "data/client_dataset.h"
#include "session/error_log.h"
#include "session/local_data.h"

namespace kalvor {

using Real = long double;  // 80-bit extended precision

inline Real roundedAmount(Real value) { return RoundUp(qint8(LocalData.PrecisionAmount), value); }
inline Real roundedPrice(Real value) { return RoundUp(qint8(LocalData.PrecisionPrice), value); }

// The header's current record and the lines' current record; missing fields raise.
struct SaleRecords {
  TClientDataSet* header;
  TClientDataSet* line;

  TField* lineField(const char16_t* name) const { return line->FieldByName(QStringView(name)); }
  TField* headerField(const char16_t* name) const { return header->FieldByName(QStringView(name)); }
  Real lineValue(const char16_t* name) const { return decimalOf(lineField(name)->AsFloat()); }
  Real headerValue(const char16_t* name) const { return decimalOf(headerField(name)->AsFloat()); }
  void set(const char16_t* name, Real value) const { lineField(name)->SetAsFloat(static_cast<double>(value)); }
  // The line's field takes the header's value of the same name.
  void takeFromHeader(const char16_t* name) const { lineField(name)->SetValue(headerField(name)->Value()); }

  bool pricesIncludeVat() const { return headerField(u"PriceIncludingVAT")->AsInteger() == 1; }
  bool headerVatFlagSet() const { return headerField(u"PriceIncludingVAT")->AsInteger() != 0; }
  Real vatFactor() const { return 1 + lineValue(u"VATPercent") / 100; }
  // The unit price without VAT when the header says that prices hold it.
  Real netUnitPrice() const
  {
    return headerVatFlagSet() ? lineValue(u"UnitPrice") / vatFactor() : lineValue(u"UnitPrice");
  }
};

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

// A shared step: the guard is as before afterwards.
template <class Body>
void sharedStep(const char* routine, const SaleRecords& records, bool& guard, Body body)
{
  const GuardScope scope(guard, guard);
  loggingErrors(QLatin1String(routine), [&] { body(records); });
}

// A change routine: nothing while the guard is set, and clear afterwards. True when it ran without an error.
template <class Body>
bool changeRoutine(const char* routine, const SaleRecords& records, bool& guard, Body body)
{
  if (guard)
    return false;
  const GuardScope scope(guard, false);
  return loggingErrors(QLatin1String(routine), [&] { body(records); });
}

}  // namespace kalvor
