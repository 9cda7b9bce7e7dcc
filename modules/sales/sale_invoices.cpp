#include "sale_invoices.h"

#include <utility>

#include "business/sale_line_amounts.h"
#include "business/vat_totals.h"
#include "session/local_data.h"

namespace kalvor {

namespace {

using LineRule = void (*)(TClientDataSet*, TClientDataSet*, bool&);

struct LineRuleRow {
  const char16_t* field;
  LineRule rule;
};
constexpr LineRuleRow lineRules[] = {
    {u"Quantity", recalculateSaleLine},
    {u"UnitPrice", SrvSaleLineDiscOnChange},
    {u"LineDiscount", SrvSaleLineDiscOnChange},
    {u"LineDiscountAmount", SrvSaleLineDiscAmntOnChange},
    {u"InvDiscAmount", SrvSaleInvDiscAmntOnChange},
    {u"TotalPrice", SrvSaleTotalPriceOnChange},
};

struct TotalRow {
  const char16_t* field;
  double TVATTotals::* value;
};
constexpr TotalRow totalRows[] = {
    {u"TotalValue", &TVATTotals::CRN_TotalValue},     {u"VATValue", &TVATTotals::CRN_VATValue},
    {u"TotalVAT", &TVATTotals::CRN_TotalVAT},         {u"TotalValue_LCY", &TVATTotals::TotalValue},
    {u"VATValue_LCY", &TVATTotals::VATValue},         {u"TotalVAT_LCY", &TVATTotals::TotalVAT},
};

}  // namespace

void TfEdSaleInvoice::AttachDynamicEvents(TClientDataSet* dataSet)
{
  TfBaseEditMasterDetail::AttachDynamicEvents(dataSet);
  if (dataSet == cdsDetail() && !lineRulesAttached_)
    attachLineRules();
}

void TfEdSaleInvoice::attachLineRules()
{
  lineRulesAttached_ = true;
  for (const LineRuleRow& row : lineRules)
    if (TField* field = cdsDetail()->FindField(QStringView(row.field)))
      field->OnChange = [this, rule = row.rule, previous = field->OnChange](TField* changed) {
        if (previous)
          previous(changed);
        rule(cdsMaster(), cdsDetail(), guard_);
      };
  for (DataSetEvent* event : {&cdsDetail()->AfterPost, &cdsDetail()->AfterDelete})
    *event = [this, previous = *event](TClientDataSet* lines) {
      if (previous)
        previous(lines);
      updateDocumentTotals();
    };
}

// The document's amounts: VAT rounded once per group on the sums of the lines.
void TfEdSaleInvoice::updateDocumentTotals()
{
  const TClientDataSet* lines = cdsDetail();
  if (cdsMaster()->IsEmpty())
    return;
  const TField* group = lines->FieldByName(u"VATProdPostGroup_Id");
  const TField* percent = lines->FieldByName(u"VATPercent");
  const TField* value = lines->FieldByName(u"TotalValue");
  const TField* localValue = lines->FieldByName(u"TotalValue_LCY");
  TVATTotals totals(LocalData.PrecisionAmount);
  for (qsizetype row = 0; row < lines->RecordCount(); ++row) {
    const double rate = percent->ValueAt(row).toDouble();
    const QString key = QStringLiteral("%1|%2").arg(group->ValueAt(row).toString()).arg(rate);
    totals.AddVATGroups(key, rate, localValue->ValueAt(row).toDouble(), value->ValueAt(row).toDouble());
  }
  bool different = false;
  for (const TotalRow& row : totalRows)
    if (const TField* field = cdsMaster()->FindField(QStringView(row.field)))
      different = different || field->AsFloat() != totals.*row.value;
  if (!different)
    return;
  if (!CheckState())
    cdsMaster()->Edit();
  for (const TotalRow& row : totalRows)
    if (TField* field = cdsMaster()->FindField(QStringView(row.field))) {
      const bool readOnly = std::exchange(field->ReadOnly, false);
      field->SetAsFloat(totals.*row.value);
      field->ReadOnly = readOnly;
    }
}

}  // namespace kalvor
