#include "server/demo/invoice_generator.h"

#include "server/demo/demo_parts.h"
#include "server/load/id_sequence.h"
#include "server/load/row_inserter.h"
#include "server/store/migrations.h"
#include "server/store/schema_script.h"

namespace kalvor::server {

namespace {

constexpr QChar generatedMark = u'G';
constexpr int manyInvoices = 50'000;

// The secondary indexes of the sale tables as the program makes them. Filling many rows in goes several times faster
// without them, and making them afterwards sorts once. That of the lines' documents stays: the database looks for a new
// document's waiting lines by it.
QStringList indexStatements()
{
  QStringList statements;
  for (const Migration& migration : embeddedMigrations()) {
    for (const QString& statement : splitScript(migration.sql)) {
      if (statement.startsWith(u"CREATE INDEX") && statement.contains(QStringLiteral("ON D_SaleInvoice")) &&
          !statement.contains(QStringLiteral("(Master_Id"))) {
        statements.append(statement);
      }
    }
  }
  return statements;
}

QString indexName(const QString& statement) { return statement.simplified().section(u' ', 2, 2); }

struct GeneratedItem {
  QString code, name, measureId, vatProdGroupId, genProdGroupId;
  qint64 price = 0;
  qint64 type = 1;
};

class InvoiceGenerator {
 public:
  InvoiceGenerator(Connection& connection, const GeneratorOptions& options)
      : connection_(connection), options_(options), random_(options.seed),
        vat_(connection, options.companyId),
        headers_(connection, QStringLiteral("D_SaleInvoiceHeader"),
                 {"Id", "Comp_Id", "DocumentNo", "DocumentDate", "VATDate", "DocStatus", "DocSubType_Id", "Series_Id",
                  "PostingSerie_Id", "Contragent_Id", "InvToContragent_ID", "BusinessGroup_Id", "PayTerm_Id",
                  "PayMethod_Id", "DueDate", "VATBusPostGroup_Id", "GenBusPostGroup_Id", "TotalValue", "VATValue",
                  "TotalVAT", "TotalValue_LCY", "VATValue_LCY", "TotalVAT_LCY", "C_Businessgroup_Id", "C_User_Id",
                  "C_Datetime"}),
        lines_(connection, QStringLiteral("D_SaleInvoiceLine"),
               {"Id", "Comp_Id", "Master_Id", "Line_No", "Type", "Code", "Description", "Measure_Id", "Quantity",
                "Quantity_Base", "UnitPrice", "OriginalPrice", "TotalPrice", "VATPercent", "VATCalculationType",
                "VATLedger", "VATProdPostGroup_Id", "VATBusPostGroup_Id", "GenProdPostGroup_Id", "GenBusPostGroup_Id",
                "BusinessGroup_Id", "UnitCost_ACY", "UnitCost_LCY", "TotalValue", "VATBaseAmount", "VATValue",
                "TotalVAT", "TotalValue_LCY", "VatValue_LCY", "TotalVAT_LCY"})
  {
    readCompany();
  }

  void run()
  {
    const QString last = connection_.value(
        QStringLiteral("SELECT MAX(DocumentNo) FROM D_SaleInvoiceHeader WHERE Comp_Id = ? AND DocumentNo LIKE 'G%'"),
        {options_.companyId}).toString();
    const int first = last.mid(1).toInt() + 1;
    for (int i = 0; i < options_.invoices; ++i) {
      writeInvoice(first + i,
                   options_.lastDay.addDays(-options_.days + qint64(options_.days) * (i + 1) / options_.invoices));
    }
  }

 private:
  void readCompany();
  void writeInvoice(int number, const QDate& day);
  SaleTotals writeLines(const QString& invoice);

  Connection& connection_;
  GeneratorOptions options_;
  DemoRandom random_;
  VatRules vat_;
  CompanyDefaults defaults_;
  QStringList customers_;
  QStringList objects_;
  QList<GeneratedItem> items_;
  IdSequence headerIds_, lineIds_;
  RowInserter headers_, lines_;
};

void InvoiceGenerator::readCompany()
{
  const auto defaults = readCompanyDefaults(connection_, options_.companyId);
  if (!defaults) {
    throw StoreError(StoreError::Kind::Other, QStringLiteral("няма фирма „%1“").arg(options_.companyId));
  }
  defaults_ = *defaults;
  const auto list = [&](const char* sql, QStringList& into) {
    auto rows = connection_.prepare(QString::fromLatin1(sql));
    rows->bind(0, options_.companyId);
    while (rows->step()) {
      into.append(rows->text(0));
    }
  };
  list("SELECT Id FROM N_Contragent WHERE Comp_Id = ? AND Inactive = 0 ORDER BY Code", customers_);
  list("SELECT Id FROM N_BusinessGroup WHERE Comp_Id = ? ORDER BY Code", objects_);
  auto items = connection_.prepare(QStringLiteral(
      "SELECT Code, Name, Measure_Id, VATProdPostGroup_Id, GenProdPostGroup_Id, UnitPrice, Type FROM N_Item "
      "WHERE Comp_Id = ? AND Inactive = 0 ORDER BY Code"));
  items->bind(0, options_.companyId);
  while (items->step()) {
    items_.append({items->text(0), items->text(1), items->text(2), items->text(3), items->text(4), items->integer(5),
                   items->integer(6)});
  }
  if (customers_.isEmpty() || items_.isEmpty()) {
    throw StoreError(StoreError::Kind::Other,
                     QStringLiteral("фирма „%1“ няма контрагенти или артикули").arg(options_.companyId));
  }
}

SaleTotals InvoiceGenerator::writeLines(const QString& invoice)
{
  SaleTotalsBuilder sums;
  for (int line = 1; line <= std::max(1, options_.linesEach); ++line) {
    const GeneratedItem& item = items_.at(random_.below(int(items_.size())));
    const VatRule* vat = vat_.find(defaults_.vatBusGroupId, item.vatProdGroupId);
    SaleLineInput input;
    input.quantity = random_.between(1, 20) * amountScale;
    input.unitPrice = item.price;
    input.vatPercent = vat ? vat->percent : 0;
    const SaleLineAmounts amounts = saleLineAmounts(input, defaults_.rules);
    sums.add(input.vatPercent, amounts.totalValue, amounts.totalValueLcy);
    if (options_.linesEach > 0) {
      lines_.insert({lineIds_.next(), options_.companyId, invoice, line, item.type, item.code, item.name,
                     item.measureId, input.quantity, input.quantity, input.unitPrice, input.unitPrice,
                     amounts.totalPrice, input.vatPercent, vat ? vat->calculationType : 0, vat ? vat->salesLedger : 0,
                     item.vatProdGroupId, defaults_.vatBusGroupId, item.genProdGroupId, defaults_.genBusGroupId,
                     defaults_.businessGroupId, amounts.unitCost, amounts.unitCostLcy, amounts.totalValue,
                     amounts.totalValue, amounts.vatValue, amounts.totalVat, amounts.totalValueLcy,
                     amounts.vatValueLcy, amounts.totalVatLcy});
    }
  }
  return sums.totals(defaults_.rules);
}

void InvoiceGenerator::writeInvoice(int number, const QDate& day)
{
  const QString id = headerIds_.next();
  const SaleTotals totals = writeLines(id);
  const QString customer = customers_.at(random_.skewedBelow(int(customers_.size())));
  const QString object = objects_.at(random_.below(int(objects_.size())));
  headers_.insert({id, options_.companyId, generatedMark + QString::number(number).rightJustified(9, u'0'), day, day, 1,
                   defaults_.subDocumentId, defaults_.seriesId, defaults_.postingSeriesId, customer, customer, object,
                   defaults_.paymentTermsId, defaults_.paymentMethodId, day.addDays(14), defaults_.vatBusGroupId,
                   defaults_.genBusGroupId, totals.totalValue, totals.vatValue, totals.totalVat, totals.totalValueLcy,
                   totals.vatValueLcy, totals.totalVatLcy, object, QStringLiteral("SUPERVSR"), day.startOfDay()});
}

}  // namespace

void generateInvoices(Connection& connection, const GeneratorOptions& options)
{
  Transaction transaction(connection);
  const QStringList indexes = options.invoices < manyInvoices ? QStringList() : indexStatements();
  for (const QString& statement : indexes) {
    connection.define(QStringLiteral("DROP INDEX ") + indexName(statement));
  }
  InvoiceGenerator(connection, options).run();
  for (const QString& statement : indexes) {
    connection.define(statement);
  }
  transaction.commit();
}

}  // namespace kalvor::server
