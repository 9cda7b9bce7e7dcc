// Three years of sale invoices, numbered in the order of their days.
#include <QCryptographicHash>
#include <QtEndian>
#include <algorithm>

#include "server/demo/demo_parts.h"
#include "server/load/id_sequence.h"
#include "server/load/row_inserter.h"
#include "server/load/sale_invoice_load.h"

namespace kalvor::server {

namespace {

enum DocumentStatus { StatusOpen = 0, StatusFinished = 1, StatusCancelled = 2 };

quint64 idPrefix(const DemoScope& scope, const char* table)
{
  const QByteArray hash = QCryptographicHash::hash(scope.companyId.toUtf8() + table, QCryptographicHash::Md5);
  return qFromBigEndian<quint64>(hash.constData());
}

// Working days, the end of the year busier; sorted.
QList<QDate> invoiceDays(DemoScope& scope)
{
  const int span = int(scope.firstDay().daysTo(scope.options.lastDay));
  QList<QDate> days;
  while (days.size() < scope.invoiceCount) {
    const QDate day = scope.firstDay().addDays(1 + scope.random.below(span));
    const int weight = (day.dayOfWeek() > 6 ? 5 : day.dayOfWeek() == 6 ? 40 : 70) + (day.month() >= 11 ? 30 : 0);
    if (scope.random.chance(weight)) {
      days.append(day);
    }
  }
  std::sort(days.begin(), days.end());
  return days;
}

// Whether the total lies exactly between two cents, where binary and decimal arithmetic may part ways; such lines are
// moved, so that everybody who recalculates the demo finds the same cents.
bool liesBetweenCents(const SaleLineInput& line)
{
  constexpr qint64 quantityUnit = amountScale / 1000;
  constexpr qint64 cent = amountScale / 100;
  constexpr qint64 wholePercent = 100 * amountScale;
  const qint64 kept = (wholePercent - line.discountPercent) * 10 / amountScale;  // tenths of a percent
  const qint64 thousandths = line.quantity / quantityUnit * (line.unitPrice / cent) * kept;
  return thousandths % 1'000'000 == 500'000;
}

struct InvoiceDraft {
  QString id;
  QDate day;
  const DemoObject* object = nullptr;
  const DemoContragent* customer = nullptr;
  QString currencyId;
  qint64 currencyFactor = amountScale;
  double currencyPerEuro = 1;
};

class InvoiceWriter {
 public:
  explicit InvoiceWriter(DemoScope& scope)
      : scope_(scope), vat_(scope.connection, scope.companyId), rates_(scope.connection, scope.defaults),
        headerIds_(idPrefix(scope, "D_SaleInvoiceHeader")), lineIds_(idPrefix(scope, "D_SaleInvoiceLine")),
        headers_(scope.connection, QStringLiteral("D_SaleInvoiceHeader"),
                 {"Id", "Comp_Id", "DocumentNo", "DocumentDate", "VATDate", "AbsoluteNo", "DocStatus", "DocSubType_Id",
                  "Series_Id", "PostingSerie_Id", "Contragent_Id", "InvToContragent_ID", "BusinessGroup_Id",
                  "Currency_Id", "CurrencyFactor", "PriceIncludingVAT", "PayTerm_Id", "PayMethod_Id", "DueDate", "VATBusPostGroup_Id",
                  "GenBusPostGroup_Id", "TotalValue", "VATValue", "TotalVAT", "TotalValue_LCY", "VATValue_LCY",
                  "TotalVAT_LCY", "CopiesPrinted", "C_Businessgroup_Id", "C_User_Id", "C_Datetime"}),
        lines_(scope.connection, QStringLiteral("D_SaleInvoiceLine"),
               {"Id", "Comp_Id", "Master_Id", "Line_No", "Type", "Code", "Description", "Measure_Id",
                "QtyPerUnitOfMeasure", "Quantity", "Quantity_Base", "UnitPrice", "OriginalPrice", "OriginalDiscount",
                "LineDiscount", "LineDiscountAmount", "AllowInvoiceDisc", "TotalPrice", "VATPercent",
                "VATCalculationType", "VATLedger", "VATProdPostGroup_Id", "VATBusPostGroup_Id", "GenProdPostGroup_Id",
                "GenBusPostGroup_Id", "Currency_Id", "BusinessGroup_Id", "PriceIncludingVAT", "UnitCost_ACY",
                "UnitCost_LCY", "TotalValue", "VATBaseAmount", "VATValue", "TotalVAT", "TotalValue_LCY",
                "VatValue_LCY", "TotalVAT_LCY", "InvoicedQty"})
  {
  }

  void write(const QDate& day)
  {
    const InvoiceDraft draft = draftFor(day);
    SaleTotalsBuilder sums;
    pending_.clear();
    const int count = scope_.random.between(1, 12);
    for (int line = 1; line <= count; ++line) {
      draftLine(draft, line, sums);
    }
    writeHeader(draft, sums.totals(scope_.defaults.rules));
    for (const VariantArray& line : std::as_const(pending_)) {
      lines_.insert(line);
    }
  }

  void finish();

 private:
  InvoiceDraft draftFor(const QDate& day);
  void draftLine(const InvoiceDraft& draft, int number, SaleTotalsBuilder& sums);
  void writeHeader(const InvoiceDraft& draft, const SaleTotals& totals);
  int statusOf(const QDate& day);

  DemoScope& scope_;
  VatRules vat_;
  CurrencyRates rates_;
  IdSequence headerIds_, lineIds_;
  RowInserter headers_, lines_;
  QList<VariantArray> pending_;
  qint64 absoluteNumber_ = 0;
};

InvoiceDraft InvoiceWriter::draftFor(const QDate& day)
{
  DemoRandom& random = scope_.random;
  InvoiceDraft draft;
  draft.id = headerIds_.next();
  draft.day = day;
  int share = random.below(100);
  for (const DemoObject& object : std::as_const(scope_.objects)) {
    draft.object = &object;
    share -= object.share;
    if (share < 0) {
      break;
    }
  }
  draft.customer = &scope_.contragents.at(random.skewedBelow(int(scope_.contragents.size())));
  draft.currencyId = draft.customer->currencyId;
  if (draft.currencyId.isEmpty() && day < euroDay()) {
    draft.currencyId = QStringLiteral("BGN");
  }
  if (!draft.currencyId.isEmpty()) {
    draft.currencyFactor = rates_.rate(draft.currencyId, day).value();
    draft.currencyPerEuro =
        draft.currencyId == u"BGN" ? levaForEuro : double(amountScale) / double(draft.currencyFactor);
  }
  return draft;
}

void InvoiceWriter::draftLine(const InvoiceDraft& draft, int number, SaleTotalsBuilder& sums)
{
  DemoRandom& random = scope_.random;
  const DemoItem& item = scope_.items.at(random.skewedBelow(int(scope_.items.size())));
  const VatRule vat = *vat_.find(draft.customer->vatBusGroupId, item.vatProdGroupId);
  SaleLineInput input;
  const int pieces = random.chance(70) ? random.between(1, 12) : random.between(10, 120);
  input.quantity = item.fractional ? random.between(500, 20000) * (amountScale / 1000) : pieces * amountScale;
  input.unitPrice = scaled(roundUp(
      2, unscaled(item.price) * draft.customer->pricePercent / 100 * static_cast<long double>(draft.currencyPerEuro)));
  input.discountPercent = random.chance(85) ? 0 : random.between(1, 4) * 5 * (amountScale / 2);
  if (liesBetweenCents(input)) {
    input.discountPercent = 0;
  }
  if (liesBetweenCents(input)) {
    input.quantity += amountScale / 1000;
  }
  input.vatPercent = vat.percent;
  input.currencyFactor = draft.currencyFactor;
  input.foreignCurrency = !draft.currencyId.isEmpty();
  const SaleLineAmounts amounts = saleLineAmounts(input, scope_.defaults.rules);
  sums.add(vat.percent, amounts.totalValue, amounts.totalValueLcy);
  const Variant currency = draft.currencyId.isEmpty() ? Variant() : Variant(draft.currencyId);
  pending_.append({lineIds_.next(), scope_.companyId, draft.id, number, item.type, item.code, item.name, item.measureId,
                   qlonglong(amountScale), input.quantity, input.quantity, input.unitPrice, input.unitPrice,
                   input.discountPercent, input.discountPercent, amounts.lineDiscountAmount, 1, amounts.totalPrice,
                   vat.percent, vat.calculationType, vat.salesLedger, item.vatProdGroupId,
                   draft.customer->vatBusGroupId, item.genProdGroupId, draft.customer->genBusGroupId, currency,
                   draft.object->id, 0, amounts.unitCost, amounts.unitCostLcy, amounts.totalValue, amounts.totalValue,
                   amounts.vatValue, amounts.totalVat, amounts.totalValueLcy, amounts.vatValueLcy, amounts.totalVatLcy,
                   input.quantity});
}

int InvoiceWriter::statusOf(const QDate& day)
{
  if (scope_.random.below(1000) < 15) {
    return StatusCancelled;
  }
  return day > scope_.options.lastDay.addDays(-5) ? StatusOpen : StatusFinished;
}

void InvoiceWriter::writeHeader(const InvoiceDraft& draft, const SaleTotals& totals)
{
  auto& object = *std::find_if(scope_.objects.begin(), scope_.objects.end(),
                               [&](const DemoObject& o) { return o.id == draft.object->id; });
  const QString number = object.numberPrefix + QString::number(++object.lastNumber).rightJustified(9, u'0');
  const QString absolute = QString::number(++absoluteNumber_).rightJustified(10, u'0');
  const Variant currency = draft.currencyId.isEmpty() ? Variant() : Variant(draft.currencyId);
  const DemoContragent& customer = *draft.customer;
  const QTime time(scope_.random.between(8, 18), scope_.random.between(0, 59), scope_.random.between(0, 59));
  headers_.insert({draft.id, scope_.companyId, number, draft.day, draft.day, absolute, statusOf(draft.day),
                   object.subDocumentId, object.seriesId, scope_.id("N_Series", QStringLiteral("POST")), customer.id,
                   customer.id, object.id, currency, draft.currencyFactor, 0, customer.termsId, customer.methodId,
                   draft.day.addDays(customer.termsDays), customer.vatBusGroupId, customer.genBusGroupId,
                   totals.totalValue, totals.vatValue, totals.totalVat, totals.totalValueLcy, totals.vatValueLcy,
                   totals.totalVatLcy, 1, object.id, object.sellerId, QDateTime(draft.day, time)});
}

void InvoiceWriter::finish()
{
  const auto setLast = [&](const QString& series, qint64 number) {
    scope_.connection.execute(QStringLiteral("UPDATE N_Series SET LastNo = ? WHERE Id = ?"),
                              {qlonglong(number), series});
  };
  for (const DemoObject& object : std::as_const(scope_.objects)) {
    setLast(object.seriesId, object.lastNumber);
  }
  setLast(scope_.id("N_Series", QStringLiteral("ABS")), absoluteNumber_);
}

}  // namespace

void createDemoInvoices(DemoScope& scope)
{
  InvoiceWriter writer(scope);
  for (const QDate& day : invoiceDays(scope)) {
    writer.write(day);
  }
  writer.finish();
}

}  // namespace kalvor::server
