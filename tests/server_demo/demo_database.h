// A new database with the demo companies, small unless asked otherwise.
#pragma once

#include "server/demo/demo_company.h"
#include "server/store/migrations.h"
#include "server/test_database.h"

namespace kalvor::testing {

inline server::DemoOptions smallDemo()
{
  server::DemoOptions options;
  options.hashDigest = [](const QString& digest) { return QStringLiteral("hash of ") + digest; };
  options.contragents = 60;
  options.items = 120;
  options.invoices = 400;
  return options;
}

inline std::unique_ptr<server::Connection> demoDatabase(const server::DemoOptions& options = smallDemo())
{
  auto connection = newTestConnection();
  server::migrate(*connection);
  server::createDemoCompany(*connection, options);
  return connection;
}

}  // namespace kalvor::testing
