// The demo company on a database of its own, with goods of known cost and sale documents made for posting.
#pragma once

#include "server/demo/demo_company.h"
#include "server/load/sale_amounts.h"
#include "server/operations/operation.h"
#include "server/operations/passwords.h"
#include "server/store/migrations.h"
#include "test_company.h"
#include "test_database.h"

namespace kalvor::testing {

struct TestLine {
  const char* code;      // СТОКА, ХРАНА: goods; УСЛУГА: a service
  double quantity;
  double price;
  QString source = {};   // the invoice line that comes back
  double discount = 0;
};

struct TestSale {
  QString id = {};
  int kind = 0;                       // 0 invoice, 1 credit memo
  const char* groups = "DOMESTIC/BG"; // general and VAT group of the customer
  QString currency = {};
  double factor = 1;
  QList<TestLine> lines;
  QString appliesTo = {};
  bool cash = false;
  QDate date = QDate(2026, 7, 1);
};

// Goods: СТОКА 3 pieces for 10.00 (20 % VAT), ХРАНА 50 for 123.45 (9 %). Customer "К1" of company 1, object 1.
class PostingCompany {
 public:
  PostingCompany() : core_(server::ServerCore::Databases::of(newServerDatabase())), writer_(core_.openWriter())
  {
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 5;
    demo.items = 10;
    demo.invoices = 10;
    server::createDemoCompany(*writer_, demo);
    writer_->execute(QStringLiteral("INSERT INTO N_Contragent (Id, Comp_Id, Code, Name) VALUES ('К1', '1', 'К1', 'Клиент'), ('К2', '1', 'К2', 'Друг')"));
    addItem("СТОКА", 1, "GOODS", "S20", 3, 10);
    addItem("ХРАНА", 1, "FOOD", "S9", 50, 123.45);
    addItem("УСЛУГА", 3, "SERVICES", "S20", 0, 0);
  }
  server::ServerCore& core() { return core_; }
  server::Connection& db() { return *writer_; }
  QString idOf(const char* table, const QString& code)
  {
    return db().value(QStringLiteral("SELECT Id FROM %1 WHERE Comp_Id = '1' AND Code = ?").arg(QLatin1StringView(table)), {code}).toString();
  }
  qint64 number(const QString& sql) { return db().value(sql).toLongLong(); }

  void add(const TestSale& sale);

 private:
  void addItem(const char* code, int type, const char* group, const char* vat, double stock, double cost);

  server::ServerCore core_;
  std::unique_ptr<server::Connection> writer_;
};

inline void PostingCompany::addItem(const char* code, int type, const char* group, const char* vat, double stock, double cost)
{
  const QString id = QString::fromUtf8(code);
  db().execute(QStringLiteral("INSERT INTO N_Item (Id, Comp_Id, Code, Name, Type, GenProdPostGroup_Id, VATProdPostGroup_Id, UnitCost) "
                              "VALUES (?, '1', ?, ?, ?, ?, ?, 2500000)"),
               {id, id, id, type, idOf("N_GenProdPostGroup", QString::fromLatin1(group)),
                idOf("N_VATProdPostGroup", QString::fromLatin1(vat))});
  if (stock == 0)
    return;
  db().execute(QStringLiteral("INSERT INTO G_ItemValueEntry (Id, Comp_Id, Item_Id, PostingDate, Quantity, CostAmount) "
                              "VALUES (?, '1', ?, '20260101', ?, ?)"), {id, id, stock, cost});
  for (const auto& [account, debit] : {std::pair("304", cost), std::pair("122", 0.0)})
    db().execute(QStringLiteral("INSERT INTO G_Entry (Id, Comp_Id, Transaction_Id, Line_No, Account_Id, PostingDate, DebitAmount, "
                                "CreditAmount) VALUES (?, '1', ?, 1, ?, '20260101', ?, ?)"),
                 {id + QLatin1StringView(account), id, idOf("G_Account", QString::fromLatin1(account)), debit, cost - debit});
}

inline void PostingCompany::add(const TestSale& sale)
{
  using namespace server;
  const QStringList groups = QString::fromLatin1(sale.groups).split(u'/');
  const QString general = idOf("N_GenBusPostGroup", groups[0]);
  const QString vat = idOf("N_VATBusPostGroup", groups[1]);
  const Variant currency = sale.currency.isEmpty() ? Variant() : Variant(sale.currency);
  SaleTotalsBuilder sums;
  QList<VariantArray> lines;
  for (const TestLine& line : sale.lines) {
    const QString code = QString::fromUtf8(line.code);
    const RecordSet item = db().query(QStringLiteral("SELECT Type, VATProdPostGroup_Id, VATPercent FROM N_Item, G_VATPostingSetup s "
        "WHERE N_Item.Id = ? AND s.Comp_Id = '1' AND VATBus_PostingGroup = ? AND VATProd_PostingGroup = VATProdPostGroup_Id"), {code, vat});
    const SaleLineInput input{scaled(line.quantity), scaled(line.price), scaled(line.discount),
                              item.rows ? scaled(item.value(0, 2).toDouble()) : 0, scaled(sale.factor), !sale.currency.isEmpty()};
    const SaleLineAmounts amounts = saleLineAmounts(input, {});
    sums.add(input.vatPercent, amounts.totalValue, amounts.totalValueLcy);
    lines.append({sale.id + QString::number(lines.size() + 1), sale.id, int(lines.size() + 1), item.rows ? item.value(0, 0) : Variant(1),
                  code, line.quantity, line.quantity, line.price, input.vatPercent, 1, vat,
                  item.rows ? item.value(0, 1) : Variant(), amounts.totalValue, amounts.totalValueLcy,
                  line.source.isEmpty() ? Variant() : Variant(line.source)});
  }
  const SaleTotals totals = sums.totals({});
  db().execute(QStringLiteral(
      "INSERT INTO D_GlobalSaleHeader (Id, Comp_Id, DocumentNo, DocumentDate, DocSubType_Id, Contragent_Id, BusinessGroup_Id, "
      "C_Businessgroup_Id, Currency_Id, CurrencyFactor, PayMethod_Id, VATBusPostGroup_Id, GenBusPostGroup_Id, TotalValue, "
      "VATValue, TotalVAT, TotalValue_LCY, VATValue_LCY, TotalVAT_LCY, AppliesToDocId) "
      "VALUES (?, '1', ?, ?, ?, 'К1', '1', '1', ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      {sale.id, sale.id, sale.date, idOf("N_SubDocument", sale.kind == 0 ? QStringLiteral("SALE-SOF") : QStringLiteral("RETURN-SOF")),
       currency, sale.factor, idOf("N_PaymentMethod", sale.cash ? QStringLiteral("CASH") : QStringLiteral("BANK")), vat, general,
       totals.totalValue, totals.vatValue, totals.totalVat, totals.totalValueLcy, totals.vatValueLcy, totals.totalVatLcy,
       sale.appliesTo.isEmpty() ? Variant() : Variant(sale.appliesTo)});
  for (const VariantArray& line : std::as_const(lines))
    db().execute(QStringLiteral(
        "INSERT INTO D_GlobalSaleLine (Id, Comp_Id, Master_Id, Line_No, Type, Code, Quantity, Quantity_Base, UnitPrice, VATPercent, "
        "VATLedger, VATBusPostGroup_Id, VATProdPostGroup_Id, TotalValue, TotalValue_LCY, SrcLine_Id) "
        "VALUES (?, '1', ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"), line);
}

// A user of company 1 at object 1; calls run as the server runs them.
struct PostingCaller {
  PostingCaller(PostingCompany& in, const char* user, const char* object = "1") : company(in)
  {
    session.peer = QStringLiteral("test");
    VariantArray arguments{QString::fromLatin1(user), digestOf(QStringLiteral("demo")), QString::fromLatin1(object), QStringLiteral("1"), QString()};
    if (const int result = call("LogIn", arguments).toInt(); result != 0)
      qFatal("log-in gave %d", result);
  }
  Variant call(const char* name, VariantArray& arguments, const QString& requestId = {}, server::Connection* on = nullptr)
  {
    const server::Operation* operation = server::findOperation(QLatin1StringView(name));
    return runOperation(company.core(), on ? *on : company.db(), session, *operation, arguments, requestId);
  }
  // The var result, empty when the posting failed with a negative one.
  VariantArray post(const QString& id, const QString& requestId = {}, int form = 500, server::Connection* on = nullptr)
  {
    VariantArray arguments{id, form, Variant()};
    return call("PostGlobalDoc", arguments, requestId, on).toInt() < 0 ? VariantArray() : arguments[2].toList();
  }

  PostingCompany& company;
  server::Session session;
};

}  // namespace kalvor::testing
