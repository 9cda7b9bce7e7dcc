#include "server/load/load_command.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include "server/configuration.h"
#include "server/load/bulk_load.h"
#include "server/load/command_line.h"
#include "server/store/database.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr const char* loadUsage =
    "kalvor-server load ТАБЛИЦА ФАЙЛ.csv [--db ФАЙЛ|URI] [--company ФИРМА] [--user ПОТРЕБИТЕЛ]\n"
    "    [--map колонаНаФайла=Колона ...]   накъде отива колона на файла; „колона=-“ я пропуска\n"
    "    [--set Колона=Стойност ...]        една стойност за всички записи\n"
    "    [--lookup Колона=Таблица.Ключ:колонаНаФайла ...]   код от файла, намерен в друга таблица\n"
    "    [--skip-existing]                  пропуска записи, чийто код или номер вече съществува\n"
    "Файлът е UTF-8, със запетаи, с имена на колони на първия ред, десетична точка и дати като 2026-01-31.";

LoadLookup lookupOf(const QString& text)
{
  const auto [column, rest] = pairOf(text);
  const QString path = rest.section(u':', 0, 0);
  const QString fileColumn = rest.section(u':', 1);
  if (path.count(u'.') != 1 || fileColumn.isEmpty()) {
    throw UsageError(QStringLiteral("„%1“ не е от вида Колона=Таблица.Ключ:колонаНаФайла").arg(text));
  }
  return {column, path.section(u'.', 0, 0), path.section(u'.', 1), fileColumn};
}

LoadRequest requestOf(const CommandArguments& arguments)
{
  LoadRequest request;
  request.table = arguments.positional.at(0);
  request.fileName = QFileInfo(arguments.positional.at(1)).fileName();
  request.companyId = arguments.value(QStringLiteral("--company"), QStringLiteral("1"));
  request.userId = arguments.value(QStringLiteral("--user"), QStringLiteral("SUPERVSR"));
  for (const QString& text : arguments.options.value(QStringLiteral("--map"))) {
    const auto [fileColumn, column] = pairOf(text);
    request.map.insert(fileColumn, column);
  }
  for (const QString& text : arguments.options.value(QStringLiteral("--set"))) {
    const auto [column, value] = pairOf(text);
    request.constants.insert(column, value);
  }
  for (const QString& text : arguments.options.value(QStringLiteral("--lookup"))) {
    request.lookups.append(lookupOf(text));
  }
  if (arguments.has(QStringLiteral("--skip-existing"))) {
    request.existing = ExistingRecords::Skip;
  }
  return request;
}

void load(const QStringList& arguments)
{
  const CommandArguments parsed = parseArguments(
      arguments, {{"--db", OptionKind::Value}, {"--config", OptionKind::Value}, {"--company", OptionKind::Value},
                  {"--user", OptionKind::Value}, {"--map", OptionKind::Pairs}, {"--set", OptionKind::Pairs},
                  {"--lookup", OptionKind::Pairs}, {"--skip-existing", OptionKind::Flag}});
  if (parsed.positional.size() != 2) {
    throw UsageError(QStringLiteral("нужни са таблица и файл"));
  }
  const LoadRequest request = requestOf(parsed);
  const QString database = databaseOf(parsed);
  if (!mayExist(database)) {
    throw LoadError(QStringLiteral("няма база данни %1; създава се с kalvor-server init").arg(database));
  }
  QFile file(parsed.positional.at(1));
  if (!file.open(QIODevice::ReadOnly)) {
    throw LoadError(QStringLiteral("%1: %2").arg(request.fileName, file.errorString()));
  }
  QElapsedTimer timer;
  timer.start();
  const uchar* mapped = file.size() > 0 ? file.map(0, file.size()) : nullptr;
  const QByteArray copy = mapped ? QByteArray() : file.readAll();
  const QByteArrayView text = mapped ? QByteArrayView(mapped, file.size()) : QByteArrayView(copy);
  const auto connection = openDatabase(database, ConnectionUse::Write);
  migrate(*connection);
  const LoadResult result = bulkLoad(*connection, request, text);
  QTextStream out(stdout);
  out << QStringLiteral("%1: %2 записа за %3 с").arg(request.table).arg(result.rows)
             .arg(double(timer.elapsed()) / 1000, 0, 'f', 2);
  if (result.skipped > 0) {
    out << QStringLiteral(", %1 пропуснати").arg(result.skipped);
  }
  out << Qt::endl;
}

}  // namespace

int runLoad(const QStringList& arguments)
{
  return exitCodeOf(loadUsage, [&] { load(arguments); });
}

}  // namespace kalvor::server
