// What TLS and the password hash cost: a connection, a call and a list over TLS against the same in plain text, and
// log-ins a second with the hash that users have, with the cheapest one, and against the bare hash. One run, medians.
#include <QCoreApplication>
#include <sodium.h>

#include "rpc/server_trust.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server.h"
#include "server/server_core.h"
#include "server_process.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

class OneServer : public ServerTrust {
 public:
  explicit OneServer(const server::ApplicationServer& server) : fingerprint_(server.fingerprint()) {}
  bool encrypts(const QString&, quint16) override { return !fingerprint_.isEmpty(); }
  void check(const QString&, quint16, const QByteArray& fingerprint) override
  {
    if (fingerprint != fingerprint_)
      throw RpcError(RpcError::Untrusted, QStringLiteral("another server"));
  }

 private:
  QByteArray fingerprint_;
};

struct Side {
  Side(bool tls, server::PasswordCost cost)
  {
    server::setPasswordCost(cost);
    server::ServerOptions options;
    options.database = QStringLiteral(":memory:");
    options.port = 0;
    options.tls = tls;
    served = std::make_unique<server::ApplicationServer>(options);
    server::DemoOptions demo;
    demo.hashDigest = server::hashDigest;
    demo.invoices = 500;
    server::createDemoCompany(*served->core().openWriter(), demo);
    served->start();
    trust = std::make_unique<OneServer>(*served);
    socket.Port = served->port();
    socket.trust = trust.get();
    broker = std::make_unique<ConnectionBroker>(&socket);
  }
  void logIn()
  {
    VariantArray arguments{
        QStringLiteral("SUPERVSR"), QString::fromLatin1(QCryptographicHash::hash("demo", QCryptographicHash::Md5).toHex()),
        QString(), QStringLiteral("1"), QString()};
    if (broker->Call(QStringLiteral("LogIn"), arguments).toInt() != 0)
      throw DataError(QStringLiteral("log-in"));
  }
  void call() { broker->Call(QStringLiteral("servername")); }
  // All records of the list of items.
  void list()
  {
    if (provider.isEmpty()) {
      VariantArray made{QString(), true};
      broker->Call(QStringLiteral("CreateDynamicProvider"), made);
      provider = made[0].toString();
    }
    VariantArray request{150, 0, provider, Variant(), QString(), Variant(), Variant(), 0};
    broker->Call(QStringLiteral("RequestData"), request);
    rows = broker->openProvider(provider, -1)->records.rows;
  }
  void connection()
  {
    ConnectionBroker fresh(&socket);
    fresh.Connect();
    fresh.Call(QStringLiteral("ResumeSession"), {QStringLiteral("none")});
  }

  std::unique_ptr<server::ApplicationServer> served;
  std::unique_ptr<OneServer> trust;
  SocketConnection socket;
  std::unique_ptr<ConnectionBroker> broker;
  QString provider;
  qsizetype rows = 0;
};

double bareHashMs(unsigned long long passes, size_t memory)
{
  char hash[crypto_pwhash_STRBYTES] = {};
  if (crypto_pwhash_str(hash, "digest", 6, passes, memory) != 0)
    throw DataError(QStringLiteral("hash"));
  return medianMs(15, [&] { (void)crypto_pwhash_str_verify(hash, "other.", 6); });
}

void logIns(const char* what, Side& side, int runs, double bare)
{
  const double each = medianMs(runs, [&] { side.logIn(); });
  std::printf("%-46s %10.1f a second\n", what, 1000 / each);
  line(what, each, "bare hash + one empty call", bare + medianMs(201, [&] { side.call(); }));
}

}  // namespace

int main(int argc, char** argv)
{
  const QCoreApplication application(argc, argv);
  if (sodium_init() < 0)
    return 1;
  Side plain(false, server::PasswordCost::CheapForTests);
  Side secure(true, server::PasswordCost::CheapForTests);
  plain.logIn();
  secure.logIn();
  // In turns, so that what else the machine does falls on both.
  const auto compare = [&](const char* what, int runs, void (Side::*step)()) {
    std::vector<double> times[2];
    for (int i = 0; i < runs; ++i)
      for (Side* side : {&plain, &secure})
        times[side == &secure].push_back(medianMs(1, [&] { (side->*step)(); }));
    for (auto& each : times)
      std::sort(each.begin(), each.end());
    line(what, times[1][times[1].size() / 2], "the same in plain text", times[0][times[0].size() / 2]);
  };
  compare("an empty call over TLS", 5001, &Side::call);
  compare("a list of 1000 items over TLS", 201, &Side::list);
  compare("connection and first call over TLS", 101, &Side::connection);
  logIns("log-ins, cheapest hash", plain, 201, bareHashMs(crypto_pwhash_OPSLIMIT_MIN, crypto_pwhash_MEMLIMIT_MIN));
  Side users(false, server::PasswordCost::Interactive);
  users.logIn();
  logIns("log-ins, users' hash", users, 31, bareHashMs(crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE));
  return 0;
}
