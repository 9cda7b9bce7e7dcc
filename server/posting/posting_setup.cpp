#include "server/posting/posting_setup.h"

namespace kalvor::server {

namespace {

struct AccountPurpose {
  int column;
  const char* text;
};

constexpr AccountPurpose generalPurposes[] = {
    {0, "приходи от продажби"}, {1, "кредитни известия"}, {2, "отчетна стойност"}, {3, "стоки"}};
constexpr AccountPurpose contragentPurposes[] = {
    {0, "вземания от клиенти"}, {1, "приходи от курсови разлики"}, {2, "разходи за курсови разлики"}};

constexpr const char* generalSql =
    "SELECT SalesAccount_Id, SalesCrMemoAccount_Id, CostAccount_Id, InventoryAccount_Id FROM G_GenPostingSetup "
    "WHERE Comp_Id = ? AND GenBus_PostingGroup = ? AND GenProd_PostingGroup = ?";
constexpr const char* vatSql =
    "SELECT SalesVATAccount_Id FROM G_VATPostingSetup "
    "WHERE Comp_Id = ? AND VATBus_PostingGroup = ? AND VATProd_PostingGroup = ?";
constexpr const char* contragentSql =
    "SELECT ReceivablesAccount_Id, ExchangeGainAccount_Id, ExchangeLossAccount_Id FROM G_ContragentPostingSetup "
    "WHERE Comp_Id = ? AND GenBus_PostingGroup = ?";

}  // namespace

const QStringList& PostingSetup::accountsOf(Accounts& known, const char* sql, const GroupPair& groups)
{
  const auto found = known.constFind(groups);
  if (found != known.cend()) {
    return *found;
  }
  auto row = job_.db().prepare(QLatin1StringView(sql));
  row->bind(0, job_.companyId());
  row->bind(1, groups.business);
  if (sql != contragentSql) {
    row->bind(2, groups.product);
  }
  QStringList accounts;
  if (row->step()) {
    for (int i = 0; i < row->columnCount(); ++i) {
      accounts.append(row->text(i));
    }
  }
  return *known.insert(groups, accounts);
}

QString PostingSetup::usable(const QString& accountId, const QString& what)
{
  if (accountId.isEmpty()) {
    refusePosting(what + QStringLiteral(" не е посочена в счетоводните настройки."));
  }
  auto known = usable_.constFind(accountId);
  if (known == usable_.cend()) {
    const Variant blocked = job_.db().value(QStringLiteral("SELECT Blocked FROM G_Account WHERE Id = ? AND Comp_Id = ?"),
                                            {accountId, job_.companyId()});
    known = usable_.insert(accountId, !isNull(blocked) && blocked.toInt() == 0);
  }
  if (!*known) {
    const QString code = job_.db().value(QStringLiteral("SELECT Code FROM G_Account WHERE Id = ? AND Comp_Id = ?"),
                                         {accountId, job_.companyId()}).toString();
    refusePosting(what + (code.isEmpty() ? QStringLiteral(" не е в сметкоплана на фирмата.")
                                         : QStringLiteral(" (%1) е затворена за осчетоводяване.").arg(code)));
  }
  return accountId;
}

QString PostingSetup::shown(const GroupPair& groups, const char* businessTable, const char* productTable) const
{
  const auto code = [&](const char* table, const QString& id) {
    const QString text = job_.db().value(QStringLiteral("SELECT Code FROM %1 WHERE Id = ?").arg(QLatin1StringView(table)), {id}).toString();
    return text.isEmpty() ? QStringLiteral("без група") : text;
  };
  return QStringLiteral("„%1“ и „%2“").arg(code(businessTable, groups.business), code(productTable, groups.product));
}

QString PostingSetup::general(const GlobalLine& line, GeneralAccount account)
{
  const QStringList& accounts = accountsOf(general_, generalSql, line.general);
  const AccountPurpose& purpose = generalPurposes[int(account)];
  const QString id = accounts.value(purpose.column);
  if (!id.isEmpty() && usable_.value(id)) {
    return id;
  }
  const QString groups = shown(line.general, "N_GenBusPostGroup", "N_GenProdPostGroup");
  if (accounts.isEmpty()) {
    refusePosting(QStringLiteral("%1: няма счетоводна настройка за групите %2.").arg(job_.document.shown(line), groups));
  }
  return usable(id, QStringLiteral("%1: сметката за %2 на групите %3")
                        .arg(job_.document.shown(line), QString::fromUtf8(purpose.text), groups));
}

QString PostingSetup::salesVat(const GroupPair& groups)
{
  const QStringList& accounts = accountsOf(vat_, vatSql, groups);
  const QString shownGroups = shown(groups, "N_VATBusPostGroup", "N_VATProdPostGroup");
  if (accounts.isEmpty()) {
    refusePosting(QStringLiteral("%1: няма настройка за ДДС за групите %2.").arg(job_.document.shown(), shownGroups));
  }
  return usable(accounts.first(),
                QStringLiteral("%1: сметката за ДДС на групите %2").arg(job_.document.shown(), shownGroups));
}

QString PostingSetup::contragent(ContragentAccount account)
{
  const GroupPair groups{job_.document.generalBusinessGroup, {}};
  const QStringList& accounts = accountsOf(contragent_, contragentSql, groups);
  const QString code = job_.db().value(QStringLiteral("SELECT Code FROM N_GenBusPostGroup WHERE Id = ?"), {groups.business}).toString();
  const QString group = code.isEmpty() ? QStringLiteral("без група") : code;
  if (accounts.isEmpty()) {
    refusePosting(QStringLiteral("%1: няма настройка за сметките на контрагенти от група „%2“.").arg(job_.document.shown(), group));
  }
  const AccountPurpose& purpose = contragentPurposes[int(account)];
  return usable(accounts.at(purpose.column), QStringLiteral("%1: сметката за %2 на група „%3“")
                                                 .arg(job_.document.shown(), QString::fromUtf8(purpose.text), group));
}

QString PostingSetup::payment()
{
  auto row = job_.db().prepare(QStringLiteral("SELECT Account_Id, Name FROM N_PaymentMethod WHERE Id = ? AND Comp_Id = ?"));
  row->bind(0, job_.document.payMethodId);
  row->bind(1, job_.companyId());
  if (!row->step()) {
    refusePosting(QStringLiteral("%1 се плаща веднага, но няма начин на плащане.").arg(job_.document.shown()));
  }
  const QString account = row->text(0);
  return usable(account, QStringLiteral("%1: сметката на начин на плащане „%2“").arg(job_.document.shown(), row->text(1)));
}

}  // namespace kalvor::server
