#include "business/sale_lookups.h"

#include "business/messages.h"
#include "session/dm.h"
#include "session/server_calls.h"

namespace kalvor {
namespace {

constexpr qint64 typesWithPrice[] = {1, 3, 6};

bool takesPrice(qint64 lineType)
{
  return std::find(std::begin(typesWithPrice), std::end(typesWithPrice), lineType) != std::end(typesWithPrice);
}

VariantArray priceRequest(const TClientDataSet& header, const PricedLine& line)
{
  constexpr int priceAndDiscount = 0, sale = 1;
  const auto headerValue = [&](const char16_t* name) { return header.FieldByName(QStringView(name))->Value(); };
  return {priceAndDiscount,
          sale,
          headerValue(u"InvToContragent_ID"),
          line.code,
          line.measure,
          headerValue(u"Currency_Id"),
          headerValue(u"VATBusPostGroup_Id"),
          headerValue(u"PriceIncludingVAT"),
          headerValue(u"N_SubDocument_Code"),
          line.quantity,
          headerValue(u"DocumentDate"),
          line.baseQuantity,
          line.vatProductGroup,
          headerValue(u"CurrencyFactor"),
          line.type};
}

PricedLine pricedLine(const SaleRecords& r)
{
  return {r.lineField(u"Type")->Value(),     r.lineField(u"Code")->Value(),          r.lineField(u"Measure_Id")->Value(),
          r.lineField(u"Quantity")->Value(), r.lineField(u"Quantity_Base")->Value(), r.lineField(u"VATProdPostGroup_Id")->Value()};
}

FilterRow equals(const char* field, const QString& value, const char* conjunction)
{
  return {QLatin1String(field), QStringLiteral("="), value, QLatin1String(conjunction), QString()};
}

}  // namespace

PriceLookup lookUpLinePrice(const SaleRecords& r, bool allowed, PricePer per)
{
  if (!allowed || !takesPrice(r.lineField(u"Type")->AsInteger()))
    return PriceLookup::NotDone;
  TItemParams params;
  if (DM->GetItemPriceAndDiscount(priceRequest(*r.header, pricedLine(r)), params) != 0)
    return PriceLookup::Failed;
  if (params.priceAnswered) {
    r.set(u"AllowInvoiceDisc", params.allowInvoiceDisc);
    if (r.lineValue(u"OriginalPrice") != params.price) {
      const bool scaled = per == PricePer::BaseMeasure;
      r.set(u"UnitPrice", scaled ? roundedPrice(r.lineValue(u"QtyPerUnitOfMeasure") * params.price) : params.price);
      r.set(u"OriginalPrice", params.price);
    }
  }
  if ((params.priceAnswered || params.discountAnswered) && r.lineValue(u"OriginalDiscount") != params.discount) {
    r.set(u"LineDiscount", params.discount);
    r.set(u"OriginalDiscount", params.discount);
  }
  return PriceLookup::Done;
}

void AskLinePricesAhead(const TClientDataSet* header, const QList<PricedLine>& lines)
{
  QList<VariantArray> requests;
  for (const PricedLine& line : lines)
    if (takesPrice(line.type.toLongLong()))
      requests.append(priceRequest(*header, line));
  DM->AskSalePricesAhead(requests);
}

void VatSetupLookup::apply(const SaleRecords& r)
{
  const QString product = r.lineField(u"VATProdPostGroup_Id")->AsString();
  const QString business = r.lineField(u"VATBusPostGroup_Id")->AsString();
  if (product.isEmpty() || business.isEmpty())
    return;
  VariantArray& answer = answers_[business + u'\n' + product];
  if (answer.isEmpty()) {
    Variant row;
    const int found = requestValue(
        *DM->ConBroker, TableColumns, QStringLiteral("G_VATPostingSetup"),
        QStringLiteral("VATPercent, VATCalculationType, SalesVATLedger"),
        {equals("G_VATPostingSetup.VATBus_PostingGroup", business, "AND"),
         equals("G_VATPostingSetup.VATProd_PostingGroup", product, "AND"),
         equals("G_VATPostingSetup.Comp_Id", LocalData.CompanyId, "")},
        row, RowsWanted::First);
    if (found != 1 || row.toList().size() < 3)
      throw DataError(_err_VATConfiguration);
    answer = row.toList();
  }
  r.set(u"VATPercent", answer[0].toDouble());
  r.lineField(u"VATCalculationType")->SetAsInteger(answer[1].toLongLong());
  r.lineField(u"VATLedger")->SetAsInteger(answer[2].toLongLong());
}

}  // namespace kalvor
