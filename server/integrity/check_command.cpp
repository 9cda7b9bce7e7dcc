#include "server/integrity/check_command.h"

#include <QTextStream>

#include "server/configuration.h"
#include "server/integrity/consistency.h"
#include "server/load/command_line.h"
#include "server/store/database.h"

namespace kalvor::server {

namespace {

constexpr const char* checkUsage =
    "kalvor-server check [--db ФАЙЛ|URI] [--config ФАЙЛ]\n"
    "Проверява дали базата данни е здрава и записите в нея си съответстват. Потребителите може да работят.";

void check(const QStringList& arguments)
{
  const CommandArguments parsed = parseArguments(arguments, {{QStringLiteral("--db")}, {QStringLiteral("--config")}});
  if (!parsed.positional.isEmpty()) {
    throw UsageError(QStringLiteral("излишно: %1").arg(parsed.positional.first()));
  }
  const QString database = databaseOf(parsed);
  if (!mayExist(database)) {
    throw std::runtime_error(QStringLiteral("няма база данни %1").arg(database).toStdString());
  }
  const auto connection = openDatabase(database, ConnectionUse::Read);
  QTextStream out(stdout);
  int failed = 0;
  checkConsistency(*connection, [&](const CheckOutcome& outcome) {
    failed += !outcome.passed();
    out << outcomeLine(outcome) << Qt::endl;
  });
  if (failed > 0) {
    throw std::runtime_error(QStringLiteral("%1: нарушени са %2 от проверките").arg(shownDatabase(database)).arg(failed).toStdString());
  }
  out << shownDatabase(database) << QStringLiteral(": всичко е наред") << Qt::endl;
}

}  // namespace

int runCheck(const QStringList& arguments)
{
  return exitCodeOf(checkUsage, [&] { check(arguments); });
}

}  // namespace kalvor::server
