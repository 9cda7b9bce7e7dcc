// A server in this process whose company 1 has, besides a small demo, items, rules, debts and costs made for looking up.
#pragma once

#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "server/store/migrations.h"
#include "test_database.h"
#include "wire_caller.h"

namespace kalvor::testing {

class PriceCompany {
 public:
  // The server's clock stands at 2026-07-01. The statements run on top of the demo.
  explicit PriceCompany(const QByteArray& statements)
  {
    server::setPasswordCost(server::PasswordCost::CheapForTests);
    server::ServerOptions options;
    options.database = newServerDatabase();
    options.port = 0;
    server_ = std::make_unique<server::ApplicationServer>(options);
    server_->core().today = [] { return QDate(2026, 7, 1); };
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.contragents = 5;
    demo.items = 10;
    demo.invoices = 10;
    const auto writer = server_->core().openWriter();
    server::createDemoCompany(*writer, demo);
    server::Transaction transaction(*writer);
    server::runScript(*writer, QString::fromUtf8(statements));
    transaction.commit();
    server_->start();
  }

  quint16 port() const { return server_->port(); }
  server::ServerCore& core() { return server_->core(); }

 private:
  std::unique_ptr<server::ApplicationServer> server_;
};

// Who is logged in: of company 1 a seller, a user without any right; of company 2 its owner.
struct PriceCallers {
  explicit PriceCallers(const PriceCompany& company)
      : clerk(company.port()), guest(company.port()), stranger(company.port())
  {
    if (clerk.logIn(QStringLiteral("CLERK"), QStringLiteral("1"), QStringLiteral("1")) != 0 ||
        guest.logIn(QStringLiteral("GUEST"), QStringLiteral("3"), QStringLiteral("1")) != 0 ||
        stranger.logIn(QStringLiteral("OWNER"), QStringLiteral("4"), QStringLiteral("2")) != 0) {
      qFatal("log-in");
    }
  }
  Caller clerk, guest, stranger;
};

}  // namespace kalvor::testing
