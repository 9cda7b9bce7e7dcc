// How sales are posted: chart of accounts, the accounts of every pair of groups, the documents that are posted and
// their numbers; and the ledger's opening balances of goods and debts.
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

enum AccountBalance { DebitBalance = 0, CreditBalance = 1, EitherBalance = 2 };

struct DemoAccount {
  const char* code;
  const char* name;
  AccountBalance balance;
};
constexpr DemoAccount accounts[] = {
    {"101", "Основен капитал", CreditBalance},
    {"122", "Неразпределена печалба от минали години", CreditBalance},
    {"304", "Стоки", DebitBalance},
    {"401", "Доставчици", CreditBalance},
    {"411", "Клиенти", DebitBalance},
    {"4531", "Начислен данък за покупките", DebitBalance},
    {"4532", "Начислен данък за продажбите", CreditBalance},
    {"501", "Каса", DebitBalance},
    {"503", "Разплащателна сметка", DebitBalance},
    {"602", "Разходи за външни услуги", DebitBalance},
    {"624", "Разходи по валутни операции", DebitBalance},
    {"702", "Приходи от продажби на стоки", EitherBalance},
    {"703", "Приходи от продажби на услуги", EitherBalance},
    {"724", "Приходи от валутни операции", CreditBalance}};

// By the group of the item: income, and what the cost of the goods is taken from and booked to.
struct SalesAccounts {
  const char* productGroup;
  const char* sales;
  const char* cost;
  const char* inventory;
};
constexpr SalesAccounts salesAccounts[] = {
    {"GOODS", "702", "702", "304"}, {"FOOD", "702", "702", "304"}, {"SERVICES", "703", nullptr, nullptr}};
constexpr const char* businessGroups[] = {"DOMESTIC", "EU", "EXPORT"};

struct MethodAccount {
  const char* method;
  const char* account;
};
constexpr MethodAccount methodAccounts[] = {{"CASH", "501"}, {"BANK", "503"}, {"CARD", "503"}, {"COD", "503"}};

QString accountId(const DemoScope& scope, const char* code)
{
  return scope.id("G_Account", QString::fromLatin1(code));
}

void insertChart(DemoScope& scope)
{
  RowInserter rows(scope.connection, QStringLiteral("G_Account"), {"Id", "Comp_Id", "Code", "Name", "AccountType"});
  for (const DemoAccount& account : accounts) {
    rows.insert({accountId(scope, account.code), scope.companyId, QString::fromLatin1(account.code),
                 QString::fromUtf8(account.name), int(account.balance)});
  }
}

void insertAccountSetup(DemoScope& scope)
{
  RowInserter general(scope.connection, QStringLiteral("G_GenPostingSetup"),
                      {"Id", "Comp_Id", "GenBus_PostingGroup", "GenProd_PostingGroup", "SalesAccount_Id",
                       "SalesCrMemoAccount_Id", "CostAccount_Id", "InventoryAccount_Id"});
  RowInserter contragents(scope.connection, QStringLiteral("G_ContragentPostingSetup"),
                          {"Id", "Comp_Id", "GenBus_PostingGroup", "ReceivablesAccount_Id", "PayablesAccount_Id",
                           "ExchangeGainAccount_Id", "ExchangeLossAccount_Id"});
  const auto accountOrNone = [&](const char* code) { return code ? Variant(accountId(scope, code)) : Variant(); };
  for (const char* business : businessGroups) {
    const QString group = QString::fromLatin1(business);
    for (const SalesAccounts& row : salesAccounts) {
      const QString product = QString::fromLatin1(row.productGroup);
      general.insert({scope.id("G_GenPostingSetup", group + product), scope.companyId, scope.id("N_GenBusPostGroup", group),
                      scope.id("N_GenProdPostGroup", product), accountOrNone(row.sales), accountOrNone(row.sales),
                      accountOrNone(row.cost), accountOrNone(row.inventory)});
    }
    contragents.insert({scope.id("G_ContragentPostingSetup", group), scope.companyId, scope.id("N_GenBusPostGroup", group),
                        accountId(scope, "411"), accountId(scope, "401"), accountId(scope, "724"), accountId(scope, "624")});
  }
  scope.connection.execute(
      QStringLiteral("UPDATE G_VATPostingSetup SET SalesVATAccount_Id = ?, PurchVATAccount_Id = ? WHERE Comp_Id = ?"),
      {accountId(scope, "4532"), accountId(scope, "4531"), scope.companyId});
  for (const MethodAccount& row : methodAccounts) {
    scope.connection.execute(QStringLiteral("UPDATE N_PaymentMethod SET Account_Id = ? WHERE Id = ?"),
                             {accountId(scope, row.account), scope.id("N_PaymentMethod", QString::fromLatin1(row.method))});
  }
}

struct GlobalKind {
  const char* code;
  const char* name;
  const char* prefix;
  int documentKind;
};
constexpr GlobalKind globalKinds[] = {{"SALE-", "Продажба, ", "S", 0}, {"RETURN-", "Връщане, ", "R", 1}};

// Invoices and notices of an object are numbered in one range, as the tax law asks for; store documents in a range of
// the company's.
void insertGlobalDocuments(DemoScope& scope)
{
  RowInserter series(scope.connection, QStringLiteral("N_Series"),
                     {"Id", "Comp_Id", "Code", "Name", "Prefix", "LastNo", "MaxNo", "ManualNo", "Kind"});
  RowInserter documents(scope.connection, QStringLiteral("N_SubDocument"),
                        {"Id", "Comp_Id", "Code", "Name", "SaleOrPurchase", "Series_Id", "Post_Series_Id",
                         "Ship_Series_Id", "PaymentMethod", "DocumentKind"});
  constexpr qlonglong largest = 999'999'999;
  const QString shipments = scope.id("N_Series", QStringLiteral("SHIP"));
  series.insert({shipments, scope.companyId, QStringLiteral("SHIP"), QStringLiteral("Складови документи"),
                 QStringLiteral("E"), 0, largest, 0, 0});
  auto objects = scope.connection.prepare(QStringLiteral("SELECT Code, Name FROM N_BusinessGroup WHERE Comp_Id = ? ORDER BY Id"));
  objects->bind(0, scope.companyId);
  for (int number = 1; objects->step(); ++number) {
    const QString object = objects->text(0);
    for (const GlobalKind& kind : globalKinds) {
      const QString code = QString::fromLatin1(kind.code) + object;
      const QString name = QString::fromUtf8(kind.name) + objects->text(1);
      series.insert({scope.id("N_Series", code), scope.companyId, code, name,
                     QString::fromLatin1(kind.prefix) + QString::number(number), 0, largest, 0, 0});
      documents.insert({scope.id("N_SubDocument", code), scope.companyId, code, name, 0, scope.id("N_Series", code),
                        scope.id("N_Series", QStringLiteral("INV-") + object), shipments,
                        scope.id("N_PaymentMethod", QStringLiteral("BANK")), kind.documentKind});
    }
  }
}

// A balance brought forward: the account against what the company had earned before.
class OpeningLedger {
 public:
  explicit OpeningLedger(DemoScope& scope)
      : scope_(scope), entries_(scope.connection, QStringLiteral("G_Entry"),
                                {"Id", "Comp_Id", "Businessgroup_Id", "Transaction_Id", "Line_No", "Account_Id",
                                 "PostingDate", "Description", "DebitAmount", "CreditAmount"})
  {
  }

  void write(const QString& key, const char* account, const QDate& day, const char* text, qint64 amount)
  {
    if (amount == 0) {
      return;
    }
    line(key, 1, account, day, text, amount);
    line(key, 2, "122", day, text, -amount);
  }

 private:
  void line(const QString& key, int number, const char* account, const QDate& day, const char* text, qint64 amount)
  {
    entries_.insert({scope_.id("G_Entry", key + QString::number(number)), scope_.companyId, scope_.objects.first().id,
                     scope_.id("G_Entry", key), number, accountId(scope_, account), day, QString::fromUtf8(text),
                     qlonglong(std::max<qint64>(amount, 0)), qlonglong(std::max<qint64>(-amount, 0))});
  }

  DemoScope& scope_;
  RowInserter entries_;
};

}  // namespace

void createDemoPostingSetup(DemoScope& scope)
{
  insertChart(scope);
  insertAccountSetup(scope);
  insertGlobalDocuments(scope);
  scope.connection.execute(QStringLiteral("UPDATE C_CompanySetup SET ClosedPeriodTo = ? WHERE Id = ?"),
                           {QDate(scope.options.lastDay.year() - 1, 12, 31), scope.companyId});
}

void createDemoLedger(DemoScope& scope)
{
  OpeningLedger ledger(scope);
  auto stock = scope.connection.prepare(QStringLiteral(
      "SELECT PostingDate, SUM(CostAmount) FROM G_ItemValueEntry WHERE Comp_Id = ? GROUP BY PostingDate ORDER BY PostingDate"));
  stock->bind(0, scope.companyId);
  while (stock->step()) {
    const QDate day = stock->value(0).toDate();
    ledger.write(QStringLiteral("stock") + day.toString(Qt::ISODate), "304", day, "Начално салдо на стоки", stock->integer(1));
  }
  auto debts = scope.connection.prepare(QStringLiteral(
      "SELECT PostingDate, SUM(Amount_LCY) FROM G_ContragentEntry WHERE Comp_Id = ? GROUP BY PostingDate ORDER BY PostingDate"));
  debts->bind(0, scope.companyId);
  while (debts->step()) {
    const QDate day = debts->value(0).toDate();
    ledger.write(QStringLiteral("debt") + day.toString(Qt::ISODate), "411", day, "Начално салдо на клиенти", debts->integer(1));
  }
}

}  // namespace kalvor::server
