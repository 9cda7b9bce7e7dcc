#include "business/sale_header_changes.h"

#include <cmath>

#include "business/messages.h"
#include "business/sale_line_amounts.h"
#include "business/sale_lookups.h"
#include "platform/ports.h"
#include "session/dm.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

// Visits every line in the view's order as it was at the start; the line that was current is current again at the end.
class LineWalk {
 public:
  explicit LineWalk(TClientDataSet* lines) : lines_(lines)
  {
    lines_->CheckBrowseMode();
    if (!lines_->IsEmpty())
      current_ = lines_->FieldByName(u"Id")->Value();
    for (qsizetype row = 0; row < lines_->RecordCount(); ++row)
      rows_.append(lines_->BookmarkOfRow(row));
  }
  ~LineWalk()
  {
    if (rows_.isEmpty())
      return;
    loggingErrors(QStringLiteral("LineWalk"), [this] {
      lines_->CheckBrowseMode();
      lines_->Locate(QStringLiteral("Id"), current_);
    });
  }
  LineWalk(const LineWalk&) = delete;
  LineWalk& operator=(const LineWalk&) = delete;

  template <class Body>
  void each(Body body)
  {
    for (const Bookmark row : rows_) {
      if (!lines_->GotoBookmark(row))
        continue;
      lines_->Edit();
      body();
      lines_->CheckBrowseMode();
    }
  }

 private:
  TClientDataSet* lines_;
  Variant current_;
  QList<Bookmark> rows_;
};

Variant firstOf(const Variant& row) { return row.typeId() == QMetaType::QVariantList ? row.toList().value(0) : row; }

void takeSeries(const SaleRecords& r)
{
  Variant row;
  const int found = requestValue(*DM->ConBroker, TableColumns, QStringLiteral("N_SubDocument"),
                                 QStringLiteral("Post_Series_Id,Series_Id"),
                                 {{QStringLiteral("N_SubDocument.Id"), QStringLiteral("="),
                                   r.headerField(u"DocSubType_Id")->Value(), QStringLiteral("AND"), QString()},
                                  {QStringLiteral("N_SubDocument.Comp_Id"), QStringLiteral("="), LocalData.CompanyId,
                                   QString(), QString()}},
                                 row, RowsWanted::First);
  if (found != 1)
    throw DataError(QStringLiteral("Error Getting VAT Series!"));
  const VariantArray series = row.toList();
  if (!variantText(series.value(0)).isEmpty())
    r.headerField(u"PostingSerie_Id")->SetValue(series[0]);
  if (!variantText(series.value(1)).isEmpty())
    r.headerField(u"Series_Id")->SetValue(series[1]);
}

void recalculate(const SaleRecords& r, bool& guard)
{
  UpdateSrvSaleUnitCost(r.header, r.line, guard);
  CalcSrvSaleTotalAmounts(r.header, r.line, guard);
}

template <class Body>
void logged(const char* routine, Body body)
{
  loggingErrors(QLatin1String(routine), body);
}

}  // namespace

void SrvSaleSubDocTypeOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard, bool priceLookup)
{
  changeRoutine("uSaleCalculations.SaleSubDocTypeOnChange", {header, lines}, guard, [&](const SaleRecords& r) {
    takeSeries(r);
    if (lines->IsEmpty() || !confirm(_queReCalculateDiscount))
      return;
    LineWalk(lines).each([&] {
      lookUpLinePrice(r, priceLookup);
      recalculate(r, guard);
    });
  });
}

void SrvSaleCurrencyOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard)
{
  changeRoutine("uSaleCalculations.SaleCurrencyOnChange", {header, lines}, guard, [&](const SaleRecords& r) {
    const QString currency = r.headerField(u"Currency_Id")->AsString();
    const QDate date = r.headerField(u"DocumentDate")->AsDateTime().date();
    const Real oldFactor = r.headerValue(u"CurrencyFactor");
    const Real newFactor = currency.isEmpty() ? 1 : DM->GetCurrencyRate(currency, date, 0);
    const Real ratio = newFactor == 0 ? 0 : oldFactor / newFactor;
    LineWalk(lines).each([&] {
      r.set(u"OriginalPrice", 0);
      r.takeFromHeader(u"Currency_Id");
      r.set(u"UnitPrice", roundedPrice(r.lineValue(u"UnitPrice") * ratio));
    });
  });
}

void InvToContragentOnChange(TClientDataSet* header, TClientDataSet* lines, bool& guard, bool priceLookup)
{
  logged("uSaleCalculations.ContragentOnChange", [&] {
    const SaleRecords r{header, lines};
    VatSetupLookup vat;
    LineWalk(lines).each([&] {
      lookUpLinePrice(r, priceLookup);
      for (const char16_t* field : {u"GenBusPostGroup_Id", u"VATBusPostGroup_Id", u"Currency_Id"})
        r.takeFromHeader(field);
      vat.apply(r);
      recalculate(r, guard);
    });
  });
}

void SrvSalePriceIncudingVATOnChange(TClientDataSet* header, TClientDataSet* lines, bool&)
{
  logged("SalePriceIncudingVATOnChange", [&] {
    const SaleRecords r{header, lines};
    const qint64 wanted = r.headerField(u"PriceIncludingVAT")->AsInteger();
    LineWalk(lines).each([&] {
      const qint64 has = r.lineField(u"PriceIncludingVAT")->AsInteger();
      if (has == wanted)
        return;
      const Real factor = 1 + std::trunc(r.lineValue(u"VATPercent")) / 100;
      const Real price = r.lineValue(u"UnitPrice");
      r.set(u"UnitPrice", roundedPrice(has == 1 && wanted == 0 ? price / factor : price * factor));
      r.takeFromHeader(u"PriceIncludingVAT");
    });
  });
}

void SrvSaleBusinessGroupOnChange(TClientDataSet* header, TClientDataSet* lines, bool&)
{
  logged("SaleBusinessGroupOnChange", [&] {
    const SaleRecords r{header, lines};
    const WaitCursorScope waiting;
    const ControlsDisabledScope quiet(lines);
    LineWalk(lines).each([&] { r.takeFromHeader(u"BusinessGroup_Id"); });
  });
}

void SrvSalePayTermOnChange(TClientDataSet* header, TClientDataSet* lines, bool&)
{
  logged("uSaleCalculations.SalePayTermOnChange", [&] {
    const SaleRecords r{header, lines};
    Variant row;
    const int found = requestValue(*DM->ConBroker, TableColumns, QStringLiteral("N_PaymentTerms"),
                                   QStringLiteral("DueDateCalculation"),
                                   {{QStringLiteral("N_PaymentTerms.Id"), QStringLiteral("="),
                                     r.headerField(u"PayTerm_Id")->Value(), QString(), QString()}},
                                   row, RowsWanted::First);
    const qint64 days = found == 1 ? firstOf(row).toLongLong() : 0;
    const QDateTime date = r.headerField(u"DocumentDate")->AsDateTime();
    if (date.isValid())
      r.headerField(u"DueDate")->SetAsDateTime(date.addDays(days));
  });
}

}  // namespace kalvor
