#include "server/demo/demo_company.h"

#include <QCryptographicHash>

#include "server/demo/demo_parts.h"
#include "server/metadata/metadata_loader.h"

namespace kalvor::server {

QString demoPassword() { return QStringLiteral("demo"); }

bool hasCompanies(Connection& connection)
{
  return !isNull(connection.value(QStringLiteral("SELECT Id FROM N_Company LIMIT 1")));
}

QString DemoScope::id(const char* table, const QString& key) const
{
  const QByteArray text = companyId.toUtf8() + '|' + table + '|' + key.toUtf8();
  return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex().toUpper());
}

namespace {

void createCurrencies(Connection& connection)
{
  constexpr std::pair<const char*, std::pair<const char*, const char*>> currencies[] = {
      {"BGN", {"Български лев", "975"}},   {"CHF", {"Швейцарски франк", "756"}}, {"EUR", {"Евро", "978"}},
      {"GBP", {"Британска лира", "826"}}, {"USD", {"Щатски долар", "840"}}};
  for (const auto& [code, name] : currencies) {
    connection.execute(QStringLiteral("INSERT INTO N_Currency (Id, Name, NumericCode, Decimals) VALUES (?, ?, ?, 2)"),
                       {QString::fromLatin1(code), QString::fromUtf8(name.first), QString::fromLatin1(name.second)});
  }
}

void createOneCompany(DemoScope& scope, const QString& passwordHash)
{
  createDemoSetup(scope);
  createDemoUsers(scope, passwordHash);
  createDemoRates(scope);
  createDemoContragents(scope);
  createDemoItems(scope);
  createDemoAgreements(scope);
  createDemoInvoices(scope);
  createDemoGlobalDocuments(scope);
  createDemoEntries(scope);
  createDemoLedger(scope);
}

}  // namespace

void createDemoCompany(Connection& connection, const DemoOptions& options)
{
  const QByteArray digest = QCryptographicHash::hash(demoPassword().toLatin1(), QCryptographicHash::Md5).toHex();
  const QString hash = options.hashDigest(QString::fromLatin1(digest));
  Transaction transaction(connection);
  loadMetadata(connection, embeddedMetadata(), ExistingRows::Keep);
  createCurrencies(connection);
  createDemoImports(connection);
  DemoScope main{connection, options, QStringLiteral("1"), QStringLiteral("„Демо Търговия“ ООД"),
                 DemoRandom(options.seed), options.contragents, options.items, options.invoices, {}, {}, {}, {}};
  createOneCompany(main, hash);
  DemoScope second{connection, options, QStringLiteral("2"), QStringLiteral("„Проба“ ЕООД"),
                   DemoRandom(options.seed + 1), options.contragents / 20, options.items / 20, options.invoices / 50,
                   {}, {}, {}, {}};
  createOneCompany(second, hash);
  DemoScope empty{connection, options, QStringLiteral("3"), QStringLiteral("„Нова фирма“ ЕООД"),
                  DemoRandom(options.seed + 2), 0, 0, 0, {}, {}, {}, {}};
  createDemoSetup(empty);
  createDemoUsers(empty, hash);
  createDemoRates(empty);
  transaction.commit();
}

}  // namespace kalvor::server
