// The demo: three companies to try everything on, the same every time.
//
// Company "1" „Демо Търговия“ ООД has two stores and an office, several hundred contractors, about a thousand items
// with prices, agreements and discounts, three years of currency rates, some five thousand sale invoices and what they
// left open, and deliveries that give the goods an average cost. Company "2"
// „Проба“ ЕООД is small and shows that companies do not see each other; company "3" „Нова фирма“ ЕООД is set up but
// has no records yet, for loading one's own. The local currency is EUR; invoices before 2026 are in BGN at the fixed
// 1.95583, as they were issued.
//
// Every user's password is "demo". Company 1: SUPERVSR (administrator), CASHIER (sells in both stores), CLERK (sees
// and changes the invoices of the object logged in to), AUDITOR (reads, prints, exports), FORMER (inactive), GUEST
// (no rights at all). Companies 2 and 3: SUPERVSR, OWNER (every right).
#pragma once

#include <QDate>
#include <functional>

#include "server/store/connection.h"

namespace kalvor::server {

struct DemoOptions {
  // From the digest that a client sends (MD5 of the Windows-1251 bytes, lower-case hex) to what N_Users keeps.
  std::function<QString(const QString& digest)> hashDigest;
  QDate lastDay = QDate(2026, 6, 30);  // of the newest invoice; three years before it is the first
  quint64 seed = 20260630;
  int contragents = 400;
  int items = 1000;
  int invoices = 5000;
};

// Fills a migrated database, in one transaction of its own; the program's forms are loaded where they are missing.
// Throws StoreError; nothing is written then. The companies must not be there yet (see hasCompanies).
KALVOR_SERVER void createDemoCompany(Connection& connection, const DemoOptions& options);

KALVOR_SERVER bool hasCompanies(Connection& connection);

// The password of every demo user.
KALVOR_SERVER QString demoPassword();

}  // namespace kalvor::server
