// The parts that a demo company is made of, and what they hand to each other.
#pragma once

#include <QHash>

#include "server/demo/demo_company.h"
#include "server/demo/demo_random.h"
#include "server/load/company_defaults.h"

namespace kalvor::server {

struct DemoObject {
  QString id;
  QString subDocumentId;
  QString seriesId;
  QString numberPrefix;
  QString sellerId;      // user code
  int share = 0;         // percent of the invoices
  qint64 lastNumber = 0;
};

struct DemoContragent {
  QString id, vatBusGroupId, genBusGroupId, termsId, methodId, currencyId;
  int termsDays = 0;
  int pricePercent = 100;  // of the list price
};

struct DemoItem {
  QString code, name, measureId, vatProdGroupId, genProdGroupId;
  qint64 price = 0;        // millionths of local currency, VAT excluded
  int type = 1;
  bool fractional = false;
};

struct DemoScope {
  Connection& connection;
  const DemoOptions& options;
  QString companyId;
  QString companyName;
  DemoRandom random;
  int contragentCount = 0;
  int itemCount = 0;
  int invoiceCount = 0;
  CompanyDefaults defaults;
  QList<DemoObject> objects;
  QList<DemoContragent> contragents;
  QList<DemoItem> items;

  QDate firstDay() const { return options.lastDay.addYears(-3); }
  // Of a record that users know by a code; the same in every run.
  QString id(const char* table, const QString& key) const;
};

void createDemoSetup(DemoScope& scope);
void createDemoUsers(DemoScope& scope, const QString& passwordHash);
void createDemoRates(DemoScope& scope);
void createDemoContragents(DemoScope& scope);
void createDemoItems(DemoScope& scope);
void createDemoAgreements(DemoScope& scope);
void createDemoInvoices(DemoScope& scope);
void createDemoEntries(DemoScope& scope);
void createDemoPostingSetup(DemoScope& scope);
void createDemoGlobalDocuments(DemoScope& scope);
void createDemoLedger(DemoScope& scope);
void createDemoImports(Connection& connection);

constexpr QDate euroDay() { return QDate::fromJulianDay(2461042); }  // 2026-01-01
constexpr double levaForEuro = 1.95583;

}  // namespace kalvor::server
