#include "server/commands.h"

#include <cstdio>

#include "rpc/server_trust.h"
#include "server/backup/backup_command.h"
#include "server/demo/demo_company.h"
#include "server/demo/init_command.h"
#include "server/integrity/check_command.h"
#include "server/load/command_line.h"
#include "server/load/load_command.h"
#include "server/log.h"
#include "server/metadata/metadata_loader.h"
#include "server/operations/passwords.h"
#include "server/serve_options.h"
#include "server/store/database.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr const char* usage =
    "kalvor-server serve [--config FILE] [--db FILE|URI] [--port N] [--bind ADDRESS] [--plaintext | --tls]\n"
    "    [--tls-dir FOLDER] [--certificate FILE --key FILE] [--idle-hours N] [--session-days N] [--metrics-port N]\n"
    "    Serves the companies in FILE, or in the PostgreSQL database that a libpq URI (postgresql://...) names; makes\n"
    "    the demo company when there is none. Without --db: KALVOR_DATABASE, else the user's own file.\n"
    "    Any address but the loopback is served with TLS, by a certificate that is made when there is none.\n"
    "kalvor-server fingerprint [--db FILE|URI] [--tls-dir FOLDER] [--certificate FILE --key FILE]\n"
    "    Prints the SHA-256 fingerprint of the certificate, which clients ask for at their first connection.\n"
    "kalvor-server init [--db FILE|URI] [--invoices N [--lines L] [--company ID]]\n"
    "    Makes the demo company, or brings the database to this version; then N more sale invoices for measuring.\n"
    "kalvor-server load TABLE FILE.csv [--db FILE|URI] [--company ID] [--user CODE] [--map COLUMN=FIELD ...]\n"
    "    [--set FIELD=VALUE ...] [--lookup FIELD=TABLE.KEY:COLUMN ...] [--skip-existing]\n"
    "    Loads a file of comma-separated values: all of it or nothing. --map COLUMN=- leaves a column out.\n"
    "kalvor-server check [--db FILE|URI]\n"
    "    Looks for damage and for records that contradict each other; exit code 1 when there is any.\n"
    "kalvor-server backup FILE [--db FILE|URI] [--despite-violations]\n"
    "    A checked copy of the database into FILE while users work.\n"
    "kalvor-server restore FILE --db FILE|URI [--force] [--despite-violations]\n"
    "    Brings a backup back. --force takes the place of a database that is there and that nobody uses.\n";

}  // namespace

void prepareDatabase(const QString& database)
{
  makeFolderOf(database);
  const auto connection = openDatabase(database, ConnectionUse::Write);
  migrate(*connection);
  if (!hasCompanies(*connection)) {
    logEvent(LogLevel::Info, "demo_company", {{"database", shownDatabase(database)}});
    DemoOptions demo;
    demo.hashDigest = hashDigest;
    createDemoCompany(*connection, demo);
    return;
  }
  Transaction transaction(*connection);
  loadMetadata(*connection, embeddedMetadata(), ExistingRows::Keep);
  transaction.commit();
}

int runCommand(const QStringList& arguments)
{
  const QString command = arguments.value(0);
  if (command == u"init") {
    return runInit(arguments.mid(1), hashDigest);
  }
  if (command == u"fingerprint") {
    return exitCodeOf(usage, [&] {
      std::printf("%s\n", qPrintable(fingerprintText(certificateOf(serveOptions(arguments.mid(1))).fingerprint)));
    });
  }
  if (command == u"load") {
    return runLoad(arguments.mid(1));
  }
  if (command == u"backup") {
    return runBackup(arguments.mid(1));
  }
  if (command == u"restore") {
    return runRestore(arguments.mid(1));
  }
  if (command == u"check") {
    return runCheck(arguments.mid(1));
  }
  const bool asked = command == u"help" || command == u"--help";
  std::fputs(usage, asked ? stdout : stderr);
  return asked ? 0 : 2;
}

}  // namespace kalvor::server
