#include "sale_document_rules.h"

#include <QScopedValueRollback>

#include "business/line_prices.h"
#include "business/sale_header_changes.h"
#include "business/sale_line_amounts.h"
#include "business/sale_line_changes.h"
#include "data/regional.h"
#include "platform/ports.h"
#include "session/dm.h"

namespace kalvor {

namespace {

constexpr bool priceLookup = true;
constexpr bool notSuppressed = false;

struct TotalRow {
  const char16_t* field;
  double TVATTotals::* value;
};
constexpr TotalRow totalRows[] = {
    {u"TotalValue", &TVATTotals::CRN_TotalValue},     {u"VATValue", &TVATTotals::CRN_VATValue},
    {u"TotalVAT", &TVATTotals::CRN_TotalVAT},         {u"TotalValue_LCY", &TVATTotals::TotalValue},
    {u"VATValue_LCY", &TVATTotals::VATValue},         {u"TotalVAT_LCY", &TVATTotals::TotalVAT},
};

void setAnyway(TField* field, double value)
{
  const QScopedValueRollback<bool> writable(field->ReadOnly, false);
  field->SetAsFloat(value);
}

double numberIn(const TClientDataSet* dataSet, QStringView name) { return dataSet->FieldByName(name)->AsFloat(); }

}  // namespace

SaleDocumentRules::SaleDocumentRules(TfBase& form, TClientDataSet* header, TClientDataSet* lines)
    : form_(form), rules_(form), header_(header), lines_(lines), totals_(LocalData.PrecisionAmount)
{
  setDataSet(lines_);
}

void SaleDocumentRules::dataEvent(DataEvent event, TField*)
{
  if (event == DataEvent::ActiveChange || event == DataEvent::DataSetChange) {
    updateTotals();
  }
}

// --- Which rule follows which field -------------------------------------------------------------------------------

void SaleDocumentRules::attachHeader()
{
  const auto contractor = [this](const auto&) { contractorChanged(); };
  const bool attached = rules_.attach(
      header_,
      {{QStringLiteral("DocSubType_Id"),
        [this](const auto&) {
          onLines([this] { SrvSaleSubDocTypeOnChange(header_, lines_, guard_, priceLookup); });
        }},
       {QStringLiteral("DocumentDate"), [this](const auto&) { dateChanged(); }},
       {QStringLiteral("Currency_Id"), [this](const auto&) { currencyChanged(); }},
       {QStringLiteral("CurrencyFactor"), [this](const auto&) { currencyFactorChanged(); }},
       {QStringLiteral("PriceIncludingVAT"),
        [this](const auto&) { onLines([this] { SrvSalePriceIncudingVATOnChange(header_, lines_, guard_); }); }},
       {QStringLiteral("VATBusPostGroup_Id"),
        [contractor](const auto& other) {
          if (!other(u"InvToContragent_ID")) {
            contractor(other);
          }
        }},
       {QStringLiteral("InvToContragent_ID"), contractor},
       {QStringLiteral("BusinessGroup_Id"),
        [this](const auto&) { onLines([this] { SrvSaleBusinessGroupOnChange(header_, lines_, guard_); }); }},
       {QStringLiteral("PayTerm_Id"), [this](const auto&) { SrvSalePayTermOnChange(header_, lines_, guard_); }}});
  TField* currency = header_->FindField(u"Currency_Id");
  if (attached && currency) {
    currency->OnValidate = [this, previous = currency->OnValidate](TField* field) {
      if (previous) {
        previous(field);
      }
      requireRate(field);
    };
  }
}

SaleDocumentRules::Walk SaleDocumentRules::onLine(LineRule rule)
{
  return [this, rule] { rule(header_, lines_, guard_); };
}

namespace {

// The cells of an imported line as the fields will hold them; a cell that does not read gives no value.
Variant cellOf(const TImportLine& line, QStringView name, DataType type, const TFormatSettings& settings)
{
  const auto cell = std::find_if(line.begin(), line.end(), [&](const TImportCell& one) {
    return name.compare(one.FieldName, Qt::CaseInsensitive) == 0;
  });
  if (cell == line.end())
    return {};
  try {
    return ParseAsFieldType(cell->Value, type, settings);
  } catch (const DataError&) {
    return {};
  }
}

Variant textOf(const Variant& value) { return value.isNull() ? Variant() : Variant(value.toString().trimmed()); }

}  // namespace

void SaleDocumentRules::askPricesAhead(const TImportSet& lines, const TFormatSettings& settings) const
{
  QList<PricedLine> priced;
  for (const TImportLine& line : lines) {
    const auto text = [&](const char16_t* name) { return textOf(cellOf(line, name, DataType::WideString, settings)); };
    const Variant quantity = cellOf(line, u"Quantity", DataType::Float, settings).toDouble();
    const Variant type = cellOf(line, u"Type", DataType::LargeInt, settings).toLongLong();
    priced.append({type, text(u"Code"), text(u"Measure_Id"), quantity, quantity, text(u"VATProdPostGroup_Id")});
  }
  AskLinePricesAhead(header_, priced);
}

void SaleDocumentRules::attachLines()
{
  const auto always = [](const Walk& walk) { return [walk](const auto&) { walk(); }; };
  if (!rules_.attach(lines_,
                {{QStringLiteral("VATProdPostGroup_Id"), always(onLine(SrvSaleVATProdPostingGroupOnChange))},
                 {QStringLiteral("GenProdPostGroup_Id"),
                  [this](const auto& other) {
                    if (!other(u"VATProdPostGroup_Id")) {
                      SrvSaleGenProdPostingGroupOnChange(header_, lines_, guard_);
                    }
                  }},
                 {QStringLiteral("QtyPerUnitOfMeasure"), always([this] { ratioChanged(); })},
                 {QStringLiteral("Measure_Id"),
                  [this](const auto& other) { measureChanged(other); }},
                 {QStringLiteral("Code"), always([this] { codeChanged(); })},
                 {QStringLiteral("Quantity"), always([this] { quantityChanged(); })},
                 {QStringLiteral("UnitPrice"), always(onLine(SrvSaleLineDiscOnChange))},
                 {QStringLiteral("LineDiscount"), always(onLine(SrvSaleLineDiscOnChange))},
                 {QStringLiteral("LineDiscountAmount"), always(onLine(SrvSaleLineDiscAmntOnChange))},
                 {QStringLiteral("InvDiscAmount"), always(onLine(SrvSaleInvDiscAmntOnChange))},
                 {QStringLiteral("TotalPrice"), always(onLine(SrvSaleTotalPriceOnChange))},
                 {QStringLiteral("UnitCost_ACY"), always([this] { unitCostChanged(); })},
                 {QStringLiteral("UnitCost_LCY"), always([this] { unitCostChanged(); })}})) {
    return;
  }
  const struct {
    QString field;
    void (*check)(TClientDataSet*, TClientDataSet*, bool&);
  } validations[] = {{QStringLiteral("QtyToShip"), SrvSaleValidateQuantityShipped},
                     {QStringLiteral("QtyToInvoice"), SrvSaleValidateQuantityInvoiced}};
  for (const auto& [name, check] : validations) {
    if (TField* field = lines_->FindField(name)) {
      field->OnValidate = [this, check, previous = field->OnValidate](TField* changed) {
        if (previous) {
          previous(changed);
        }
        check(header_, lines_, guard_);
      };
    }
  }
  // The last amount that every recalculation of a line writes: the document's VAT follows while the user types.
  if (TField* amount = lines_->FindField(u"TotalVAT_LCY")) {
    amount->OnChange = [this, previous = amount->OnChange](TField* changed) {
      if (previous) {
        previous(changed);
      }
      if (!form_.isImporting()) {
        updateTotals();
      }
    };
  }
  for (DataSetEvent* event : {&lines_->AfterPost, &lines_->AfterDelete}) {
    *event = [this, previous = *event](TClientDataSet* dataSet) {
      if (previous) {
        previous(dataSet);
      }
      if (!form_.isImporting()) {
        refreshTotals();
      }
    };
  }
}

// --- The header ----------------------------------------------------------------------------------------------------

// Many lines change: the document's amounts once, at the end. Lines with a new price or discount from the price list
// get the amounts that hang on them.
void SaleDocumentRules::onLines(const Walk& walk)
{
  {
    const QScopedValueRollback<bool> walking(walking_, true);
    QHash<QString, PriceListValues> before;
    for (qsizetype row = 0; row < lines_->RecordCount(); ++row) {
      before.insert(lines_->FieldByName(u"Id")->ValueAt(row).toString(), priceListValues(row));
    }
    walk();
    eachLine([&](qsizetype row) {
      const PriceListValues known = before.value(lines_->FieldByName(u"Id")->ValueAt(row).toString());
      if (priceListValues(row) == known) {
        return;
      }
      lines_->SetRecNo(row + 1);
      lines_->Edit();
      SrvSaleLineDiscOnChange(header_, lines_, guard_);
      lines_->Post();
    });
  }
  updateTotals();
  writeTotals();
}

SaleDocumentRules::PriceListValues SaleDocumentRules::priceListValues(qsizetype row) const
{
  return {lines_->FieldByName(u"OriginalPrice")->ValueAt(row).toDouble(),
          lines_->FieldByName(u"OriginalDiscount")->ValueAt(row).toDouble()};
}

// The line that is current stays current.
void SaleDocumentRules::eachLine(const std::function<void(qsizetype row)>& body)
{
  if (lines_->IsEmpty()) {
    return;
  }
  const ControlsDisabledScope quiet(lines_);
  const Variant current = lines_->FieldByName(u"Id")->Value();
  for (qsizetype row = 0; row < lines_->RecordCount(); ++row) {
    body(row);
  }
  lines_->Locate(QStringLiteral("Id"), current);
}

void SaleDocumentRules::recalculateLines(LineRule rule)
{
  eachLine([this, rule](qsizetype row) {
    lines_->SetRecNo(row + 1);
    lines_->Edit();
    rule(header_, lines_, guard_);
    lines_->Post();
  });
}

void SaleDocumentRules::contractorChanged()
{
  onLines([this] { InvToContragentOnChange(header_, lines_, guard_, priceLookup); });
}

// Prices in a currency without a rate would become 0.
void SaleDocumentRules::requireRate(TField* currency)
{
  const QString code = currency->AsString();
  const QDate date = header_->FieldByName(u"DocumentDate")->AsDateTime().date();
  const QDate day = date.isValid() ? date : systemClock().today();
  rate_ = code.isEmpty() ? 1 : DM->GetCurrencyRate(code, day, 0);
  if (rate_ == 0) {
    throw DataError(QStringLiteral("Няма курс на валута %1 към %2.").arg(code, day.toString(u"dd.MM.yyyy")));
  }
}

void SaleDocumentRules::currencyChanged()
{
  if (numberIn(header_, u"CurrencyFactor") == 0) {
    setAnyway(header_->FieldByName(u"CurrencyFactor"), 1);
  }
  onLines([this] {
    SrvSaleCurrencyOnChange(header_, lines_, guard_);
    const QScopedValueRollback<bool> ours(guard_, true);
    setAnyway(header_->FieldByName(u"CurrencyFactor"), rate_);
  });
  onLines([this] { recalculateLines(SrvSaleLineDiscOnChange); });
}

// Local amounts follow the factor; a factor that SrvSaleCurrencyOnChange is still working with does not count.
void SaleDocumentRules::currencyFactorChanged()
{
  if (!guard_) {
    onLines([this] { recalculateLines(SrvSaleInvDiscAmntOnChange); });
  }
}

void SaleDocumentRules::dateChanged()
{
  SrvSalePayTermOnChange(header_, lines_, guard_);
  const QString currency = header_->FieldByName(u"Currency_Id")->AsString();
  const QDateTime date = header_->FieldByName(u"DocumentDate")->AsDateTime();
  const double rate = currency.isEmpty() || !date.isValid() ? 0 : DM->GetCurrencyRate(currency, date.date(), 0);
  if (rate != 0 && rate != numberIn(header_, u"CurrencyFactor")) {
    setAnyway(header_->FieldByName(u"CurrencyFactor"), rate);
  }
}

// --- The line ------------------------------------------------------------------------------------------------------

// The lookup of a measure brings its ratio: the price and the base quantity follow the ratio, then the price list is
// asked for a line that speaks of one measure only.
void SaleDocumentRules::measureChanged(const FieldRule::Others& other)
{
  if (other(u"Code")) {
    return;  // the new item's own measure is priced with it
  }
  if (other(u"QtyPerUnitOfMeasure")) {
    SrvSaleQuantityOnChange(header_, lines_, guard_, notSuppressed, priceLookup);
  } else {
    SrvSaleMeasureOnChange(header_, lines_, guard_, notSuppressed, priceLookup);
  }
}

void SaleDocumentRules::codeChanged()
{
  if (guard_) {
    return;
  }
  SrvSaleDetailCodeOnChange(header_, lines_, guard_, notSuppressed, priceLookup);
  SrvSaleQuantityOnChange(header_, lines_, guard_, notSuppressed, false);
}

void SaleDocumentRules::quantityChanged()
{
  SrvSaleQuantityOnChange(header_, lines_, guard_, notSuppressed, priceLookup);
}

void SaleDocumentRules::ratioChanged()
{
  if (guard_) {
    return;
  }
  SrvSaleQtyPerUnitOfMeasureOnChange(header_, lines_, guard_);
  SrvSaleLineDiscOnChange(header_, lines_, guard_);
}

void SaleDocumentRules::unitCostChanged()
{
  if (guard_) {
    return;
  }
  SrvSaleUnitCost_ACYOnChange(header_, lines_, guard_);
  SrvSaleLineDiscOnChange(header_, lines_, guard_);
}

// --- The document's amounts ------------------------------------------------------------------------------------------

// VAT is rounded once per group on the sums of the lines.
void SaleDocumentRules::updateTotals()
{
  if (walking_) {
    return;
  }
  totals_ = TVATTotals(LocalData.PrecisionAmount);
  if (lines_->Active()) {
    const TField* group = lines_->FieldByName(u"N_VATProdPostGroup_Code");
    const TField* percent = lines_->FieldByName(u"VATPercent");
    const TField* value = lines_->FieldByName(u"TotalValue");
    const TField* localValue = lines_->FieldByName(u"TotalValue_LCY");
    for (qsizetype row = 0; row < lines_->RecordCount(); ++row) {
      const double rate = percent->ValueAt(row).toDouble();
      const QString key = QStringLiteral("%1 %2 %").arg(group->ValueAt(row).toString(), percent->FormatValue(rate));
      totals_.AddVATGroups(key.trimmed(), rate, localValue->ValueAt(row).toDouble(), value->ValueAt(row).toDouble());
    }
  }
  if (totalsChanged) {
    totalsChanged();
  }
}

void SaleDocumentRules::refreshTotals()
{
  updateTotals();
  writeTotals();
}

void SaleDocumentRules::writeTotals()
{
  if (walking_ || header_->IsEmpty()) {
    return;
  }
  bool different = false;
  for (const TotalRow& row : totalRows) {
    if (const TField* field = header_->FindField(QStringView(row.field))) {
      different = different || field->AsFloat() != totals_.*row.value;
    }
  }
  if (!different) {
    return;
  }
  if (!header_->IsEditing()) {
    header_->Edit();
  }
  for (const TotalRow& row : totalRows) {
    if (TField* field = header_->FindField(QStringView(row.field))) {
      setAnyway(field, totals_.*row.value);
    }
  }
}

}  // namespace kalvor
