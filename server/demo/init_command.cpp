#include "server/demo/init_command.h"

#include <QElapsedTimer>
#include <QTextStream>

#include "server/configuration.h"
#include "server/demo/demo_company.h"
#include "server/demo/invoice_generator.h"
#include "server/load/command_line.h"
#include "server/store/database.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr const char* initUsage =
    "kalvor-server init [--db ФАЙЛ|URI] [--invoices БРОЙ [--lines БРОЙ] [--company ФИРМА]]\n"
    "Създава базата данни и демонстрационните фирми, ако ги няма; с --invoices добавя още фактури за измервания.";

void initDatabase(const QStringList& arguments, const std::function<QString(const QString&)>& hashDigest)
{
  const CommandArguments parsed =
      parseArguments(arguments, {{"--db", OptionKind::Value}, {"--config", OptionKind::Value},
                                 {"--invoices", OptionKind::Value}, {"--lines", OptionKind::Value},
                                 {"--company", OptionKind::Value}});
  if (!parsed.positional.isEmpty()) {
    throw UsageError(QStringLiteral("излишно: %1").arg(parsed.positional.first()));
  }
  GeneratorOptions generator;
  generator.invoices = countOf(parsed, QStringLiteral("--invoices"), 0);
  generator.linesEach = countOf(parsed, QStringLiteral("--lines"), 0);
  generator.companyId = parsed.value(QStringLiteral("--company"), generator.companyId);

  const QString database = databaseOf(parsed);
  const QString shown = shownDatabase(database);
  makeFolderOf(database);
  const auto connection = openDatabase(database, ConnectionUse::Write);
  migrate(*connection);
  QTextStream out(stdout);
  QElapsedTimer timer;
  timer.start();
  const auto seconds = [&] { return QString::number(double(timer.restart()) / 1000, 'f', 2); };
  if (hasCompanies(*connection)) {
    out << QStringLiteral("%1: фирмите вече са тук").arg(shown) << Qt::endl;
  } else {
    DemoOptions demo;
    demo.hashDigest = hashDigest;
    createDemoCompany(*connection, demo);
    out << QStringLiteral("%1: демонстрационните фирми са създадени за %2 с").arg(shown, seconds()) << Qt::endl;
  }
  if (generator.invoices > 0) {
    generateInvoices(*connection, generator);
    out << QStringLiteral("%1 фактури за %2 с").arg(generator.invoices).arg(seconds()) << Qt::endl;
  }
}

}  // namespace

int runInit(const QStringList& arguments, const std::function<QString(const QString&)>& hashDigest)
{
  return exitCodeOf(initUsage, [&] { initDatabase(arguments, hashDigest); });
}

}  // namespace kalvor::server
