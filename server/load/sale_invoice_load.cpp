#include "server/load/sale_invoice_load.h"

namespace kalvor::server {

namespace {

constexpr const char* headerColumns[] = {
    "DocumentDate", "Contragent_Id", "InvToContragent_ID", "Currency_Id", "CurrencyFactor", "PriceIncludingVAT",
    "VATDate", "DueDate", "PayTerm_Id", "PayMethod_Id", "VATBusPostGroup_Id", "GenBusPostGroup_Id", "BusinessGroup_Id",
    "C_Businessgroup_Id", "DocSubType_Id", "Series_Id", "PostingSerie_Id"};

constexpr const char* lineColumns[] = {
    "Master_Id", "Line_No", "Type", "Code", "Description", "Measure_Id", "QtyPerUnitOfMeasure", "Quantity",
    "Quantity_Base", "UnitPrice", "OriginalPrice", "OriginalDiscount", "LineDiscount", "LineDiscountAmount",
    "TotalPrice", "VATPercent", "VATCalculationType", "VATLedger", "VATProdPostGroup_Id", "VATBusPostGroup_Id",
    "GenProdPostGroup_Id", "GenBusPostGroup_Id", "Currency_Id", "BusinessGroup_Id", "PriceIncludingVAT", "UnitCost_ACY",
    "UnitCost_LCY", "TotalValue", "VATBaseAmount", "VATValue", "TotalVAT", "TotalValue_LCY", "VatValue_LCY",
    "TotalVAT_LCY"};

template <size_t count>
QStringList columnNames(const char* const (&names)[count])
{
  QStringList list;
  for (const char* name : names) {
    list.append(QLatin1StringView(name));
  }
  return list;
}

template <size_t count>
void findSlots(const LoadRow& row, const char* const (&names)[count], int* positions)
{
  for (size_t i = 0; i < count; ++i) {
    positions[i] = row.slot(QLatin1StringView(names[i]));
  }
}

Variant textOrNothing(const QString& text) { return text.isEmpty() ? Variant() : Variant(text); }

}  // namespace

CurrencyRates::CurrencyRates(Connection& connection, const CompanyDefaults& defaults)
    : before_(connection.prepare(QStringLiteral("SELECT Rate FROM N_CurrencyRate WHERE Comp_Id = ? AND Currency_Id = ? "
                                                "AND Kind = 0 AND RateDate <= ? ORDER BY RateDate DESC LIMIT 1"))),
      first_(connection.prepare(QStringLiteral("SELECT Rate FROM N_CurrencyRate WHERE Comp_Id = ? AND Currency_Id = ? "
                                               "AND Kind = 0 ORDER BY RateDate LIMIT 1"))),
      companyId_(defaults.companyId)
{
}

std::optional<qint64> CurrencyRates::rate(const QString& currencyId, const QDate& day)
{
  if (const auto known = known_.constFind({currencyId, day}); known != known_.cend()) {
    return *known;
  }
  for (const auto& statement : {before_, first_}) {
    statement->reset();
    statement->bind(0, companyId_);
    statement->bind(1, currencyId);
    if (statement == before_) {
      statement->bind(2, day);
    }
    if (statement->step()) {
      const qint64 rate = statement->integer(0);
      statement->reset();
      known_.insert({currencyId, day}, rate);
      return rate;
    }
  }
  return {};
}

SaleHeaderCompletion::SaleHeaderCompletion(Connection& connection, const CompanyDefaults& defaults)
    : defaults_(defaults), rates_(connection, defaults),
      customerById_(connection.prepare(QStringLiteral(
          "SELECT VATBusPostGroup_Id, GenBusPostGroup_Id, PaymentTerms_Id, PaymentMethodCode, Currency_Id "
          "FROM N_Contragent WHERE Id = ? AND Comp_Id = ?"))),
      daysById_(connection.prepare(
          QStringLiteral("SELECT DueDateCalculation FROM N_PaymentTerms WHERE Id = ? AND Comp_Id = ?")))
{
}

QStringList SaleHeaderCompletion::columns() const { return columnNames(headerColumns); }
void SaleHeaderCompletion::start(const LoadRow& row) { findSlots(row, headerColumns, at_); }

const SaleHeaderCompletion::Customer& SaleHeaderCompletion::customer(const QString& id)
{
  const auto known = customers_.constFind(id);
  if (known != customers_.cend()) {
    return *known;
  }
  customerById_->reset();
  customerById_->bind(0, id);
  customerById_->bind(1, defaults_.companyId);
  if (!customerById_->step()) {
    throw CompletionError(QStringLiteral("Contragent_Id"), QStringLiteral("няма контрагент „%1“").arg(id));
  }
  Customer customer;
  QString* const texts[] = {&customer.vatBusGroupId, &customer.genBusGroupId, &customer.paymentTermsId,
                            &customer.paymentMethodId, &customer.currencyId};
  for (int i = 0; i < int(std::size(texts)); ++i) {
    *texts[i] = customerById_->text(i);
  }
  customerById_->reset();
  return *customers_.insert(id, customer);
}

int SaleHeaderCompletion::dueDays(const QString& termsId)
{
  const auto known = days_.constFind(termsId);
  if (known != days_.cend()) {
    return *known;
  }
  daysById_->reset();
  daysById_->bind(0, termsId);
  daysById_->bind(1, defaults_.companyId);
  const int days = daysById_->step() ? int(daysById_->integer(0)) : 0;
  daysById_->reset();
  return *days_.insert(termsId, days);
}

void SaleHeaderCompletion::completeCurrency(LoadRow& row, const QString& customerCurrency)
{
  row.setDefault(at_[Currency], textOrNothing(customerCurrency));
  const QString currency = row.text(at_[Currency]);
  if (currency.isEmpty() || currency == defaults_.localCurrency) {
    row[at_[Currency]] = Variant();
    row.setDefault(at_[CurrencyFactor], qlonglong(amountScale));
    return;
  }
  if (!row.isNull(at_[CurrencyFactor])) {
    return;
  }
  const auto rate = rates_.rate(currency, row[at_[DocumentDate]].toDate());
  if (!rate) {
    throw CompletionError(QStringLiteral("Currency_Id"), QStringLiteral("няма курс на валута „%1“").arg(currency));
  }
  row[at_[CurrencyFactor]] = qlonglong(*rate);
}

void SaleHeaderCompletion::complete(LoadRow& row)
{
  Customer of{
      defaults_.vatBusGroupId, defaults_.genBusGroupId, defaults_.paymentTermsId, defaults_.paymentMethodId, {}};
  if (!row.isNull(at_[Contragent])) {
    of = customer(row.text(at_[Contragent]));
  }
  row.setDefault(at_[InvToContragent], row[at_[Contragent]]);
  completeCurrency(row, of.currencyId);
  row.setDefault(at_[PriceIncludingVat], 0);
  row.setDefault(at_[VatBusGroup], textOrNothing(of.vatBusGroupId));
  row.setDefault(at_[GenBusGroup], textOrNothing(of.genBusGroupId));
  row.setDefault(at_[PayTerm], textOrNothing(of.paymentTermsId));
  row.setDefault(at_[PayMethod], textOrNothing(of.paymentMethodId));
  const QDate day = row[at_[DocumentDate]].toDate();
  row.setDefault(at_[VatDate], day);
  row.setDefault(at_[DueDate], day.addDays(dueDays(row.text(at_[PayTerm]))));
  row.setDefault(at_[BusinessGroup], defaults_.businessGroupId);
  row.setDefault(at_[AuditGroup], row[at_[BusinessGroup]]);
  row.setDefault(at_[SubType], textOrNothing(defaults_.subDocumentId));
  row.setDefault(at_[Series], textOrNothing(defaults_.seriesId));
  row.setDefault(at_[PostingSeries], textOrNothing(defaults_.postingSeriesId));
}

SaleLineCompletion::SaleLineCompletion(Connection& connection, const CompanyDefaults& defaults)
    : connection_(connection),
      defaults_(defaults),
      vat_(connection, defaults.companyId),
      itemByCode_(connection, QStringLiteral("N_Item"), QStringLiteral("Code"), defaults.companyId),
      documentById_(connection.prepare(
          QStringLiteral("SELECT CurrencyFactor, (SELECT MAX(Line_No) FROM D_SaleInvoiceLine WHERE Master_Id = "
                         "D_SaleInvoiceHeader.Id), "
                         "PriceIncludingVAT, Currency_Id, VATBusPostGroup_Id, GenBusPostGroup_Id, BusinessGroup_Id "
                         "FROM D_SaleInvoiceHeader WHERE Id = ? AND Comp_Id = ?"))),
      itemById_(connection.prepare(QStringLiteral(
          "SELECT Type, Name, Measure_Id, VATProdPostGroup_Id, GenProdPostGroup_Id FROM N_Item WHERE Id = ?")))
{
}

QStringList SaleLineCompletion::columns() const { return columnNames(lineColumns); }
void SaleLineCompletion::start(const LoadRow& row) { findSlots(row, lineColumns, at_); }

SaleLineCompletion::Document& SaleLineCompletion::document(const QString& id)
{
  const auto known = documents_.find(id);
  if (known != documents_.end()) {
    return *known;
  }
  documentById_->reset();
  documentById_->bind(0, id);
  documentById_->bind(1, defaults_.companyId);
  if (!documentById_->step()) {
    throw CompletionError(QStringLiteral("Master_Id"), QStringLiteral("няма документ „%1“").arg(id));
  }
  Document found;
  found.currencyFactor = documentById_->isNull(0) ? amountScale : documentById_->integer(0);
  found.lastLine = documentById_->integer(1);
  found.priceIncludesVat = documentById_->integer(2) == 1;
  QString* const texts[] = {&found.currencyId, &found.vatBusGroupId, &found.genBusGroupId, &found.businessGroupId};
  for (int i = 0; i < int(std::size(texts)); ++i) {
    *texts[i] = documentById_->text(3 + i);
  }
  documentById_->reset();
  return *documents_.insert(id, found);
}

const SaleLineCompletion::Item& SaleLineCompletion::item(const QString& code)
{
  const auto known = items_.constFind(code);
  if (known != items_.cend()) {
    return *known;
  }
  QString id;
  if (itemByCode_.find(code, id) != KeyLookup::Outcome::Found) {
    throw CompletionError(QStringLiteral("Code"), QStringLiteral("няма артикул с код „%1“").arg(code));
  }
  itemById_->reset();
  itemById_->bind(0, id);
  itemById_->step();
  const Item found{itemById_->integer(0), itemById_->text(1), itemById_->text(2), itemById_->text(3),
                   itemById_->text(4)};
  itemById_->reset();
  return *items_.insert(code, found);
}

void SaleLineCompletion::completeFromItem(LoadRow& row)
{
  if (row.isNull(at_[Code])) {
    row.setDefault(at_[Type], 1);
    row.setDefault(at_[VatProdGroup], textOrNothing(defaults_.vatProdGroupId));
    row.setDefault(at_[GenProdGroup], textOrNothing(defaults_.genProdGroupId));
    return;
  }
  const Item& of = item(row.text(at_[Code]));
  row.setDefault(at_[Type], qlonglong(of.type));
  row.setDefault(at_[Description], textOrNothing(of.name));
  row.setDefault(at_[Measure], textOrNothing(of.measureId));
  row.setDefault(at_[VatProdGroup], textOrNothing(of.vatProdGroupId));
  row.setDefault(at_[GenProdGroup], textOrNothing(of.genProdGroupId));
}

void SaleLineCompletion::completeVat(LoadRow& row, const Document& document)
{
  row.setDefault(at_[VatBusGroup], textOrNothing(document.vatBusGroupId));
  const VatRule* rule = vat_.find(row.text(at_[VatBusGroup]), row.text(at_[VatProdGroup]));
  if (!rule && row.isNull(at_[VatPercent])) {
    throw CompletionError(QStringLiteral("VATPercent"), QStringLiteral("няма настройка на ДДС за групите на реда"));
  }
  const VatRule of = rule ? *rule : VatRule{};
  row.setDefault(at_[VatPercent], qlonglong(of.percent));
  row.setDefault(at_[VatCalculationType], of.calculationType);
  row.setDefault(at_[VatLedger], of.salesLedger);
}

void SaleLineCompletion::completeAmounts(LoadRow& row, const Document& document)
{
  SaleLineInput input;
  input.quantity = row.integer(at_[Quantity]);
  input.unitPrice = row.integer(at_[UnitPrice]);
  input.discountPercent = row.integer(at_[LineDiscount]);
  input.vatPercent = row.integer(at_[VatPercent]);
  input.currencyFactor = document.currencyFactor;
  input.foreignCurrency = !document.currencyId.isEmpty();
  input.priceIncludesVat = document.priceIncludesVat;
  const SaleLineAmounts amounts = saleLineAmounts(input, defaults_.rules);
  const std::pair<Column, qint64> results[] = {
      {OriginalPrice, input.unitPrice},       {OriginalDiscount, input.discountPercent},
      {LineDiscountAmount, amounts.lineDiscountAmount}, {TotalPrice, amounts.totalPrice},
      {UnitCost, amounts.unitCost},           {UnitCostLcy, amounts.unitCostLcy},
      {TotalValue, amounts.totalValue},       {VatBase, amounts.totalValue},
      {VatValue, amounts.vatValue},           {TotalVat, amounts.totalVat},
      {TotalValueLcy, amounts.totalValueLcy}, {VatValueLcy, amounts.vatValueLcy},
      {TotalVatLcy, amounts.totalVatLcy}};
  for (const auto& [column, value] : results) {
    row[at_[column]] = qlonglong(value);
  }
}

void SaleLineCompletion::complete(LoadRow& row)
{
  Document& of = document(row.text(at_[Master]));
  row.setDefault(at_[LineNo], qlonglong(of.lastLine + 1));
  of.lastLine = std::max(of.lastLine, row.integer(at_[LineNo]));
  completeFromItem(row);
  completeVat(row, of);
  for (Column column : {Quantity, UnitPrice, LineDiscount}) {
    row.setDefault(at_[column], 0);
  }
  row.setDefault(at_[QtyPerUnit], qlonglong(amountScale));
  const double base = unscaled(row.integer(at_[Quantity])) * unscaled(row.integer(at_[QtyPerUnit]));
  row.setDefault(at_[QuantityBase], qlonglong(scaled(base)));
  row.setDefault(at_[GenBusGroup], textOrNothing(of.genBusGroupId));
  row.setDefault(at_[Currency], textOrNothing(of.currencyId));
  row.setDefault(at_[BusinessGroup], textOrNothing(of.businessGroupId));
  row.setDefault(at_[PriceIncludingVat], int(of.priceIncludesVat));
  completeAmounts(row, of);
}

void SaleLineCompletion::finish() { recalculateSaleInvoices(connection_, defaults_, documents_.keys()); }

void recalculateSaleInvoices(Connection& connection, const CompanyDefaults& defaults, const QStringList& documentIds)
{
  auto sums = connection.prepare(QStringLiteral(
      "SELECT VATPercent, SUM(TotalValue), SUM(TotalValue_LCY) FROM D_SaleInvoiceLine WHERE Master_Id = ? "
      "GROUP BY VATPercent"));
  auto update =
      connection.prepare(QStringLiteral("UPDATE D_SaleInvoiceHeader SET TotalValue = ?, VATValue = ?, TotalVAT = ?, "
                                        "TotalValue_LCY = ?, VATValue_LCY = ?, "
                                        "TotalVAT_LCY = ? WHERE Id = ?"));
  SaleTotalsBuilder builder;
  QStringList ordered = documentIds;
  ordered.sort();
  for (const QString& id : std::as_const(ordered)) {
    builder.clear();
    sums->bind(0, id);
    while (sums->step()) {
      builder.add(sums->integer(0), sums->integer(1), sums->integer(2));
    }
    sums->reset();
    const SaleTotals totals = builder.totals(defaults.rules);
    const qint64 values[] = {totals.totalValue,    totals.vatValue,    totals.totalVat,
                             totals.totalValueLcy, totals.vatValueLcy, totals.totalVatLcy};
    for (int i = 0; i < int(std::size(values)); ++i) {
      update->bind(i, qlonglong(values[i]));
    }
    update->bind(int(std::size(values)), id);
    update->step();
    update->reset();
  }
}

}  // namespace kalvor::server
