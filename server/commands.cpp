#include "server/commands.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cstdio>
#include <stdexcept>

#include "server/demo/demo_company.h"
#include "server/load/bulk_load.h"
#include "server/log.h"
#include "server/operations/passwords.h"
#include "server/store/migrations.h"

namespace kalvor::server {

namespace {

constexpr const char* usage =
    "kalvor-server serve [--db FILE] [--port N] [--bind ADDRESS] [--plaintext]\n"
    "    Serves the company in FILE; makes the demo company when there is no such file.\n"
    "kalvor-server init [--db FILE]\n"
    "    Makes FILE with the demo company, or brings it to this version.\n"
    "kalvor-server load --table TABLE [--db FILE] [--company ID] [--user CODE] [--map COLUMN=FIELD]...\n"
    "    [--set FIELD=VALUE]... [--lookup FIELD=TABLE.KEY:COLUMN]... [--skip-existing] CSV\n"
    "    Loads a file of comma-separated values: all of it or nothing. --map COLUMN=- leaves a column out.\n";

struct OptionRow {
  const char* name;
  bool takesValue;
};
constexpr OptionRow options[] = {
    {"db", true},    {"port", true}, {"bind", true}, {"plaintext", false}, {"table", true},         {"company", true},
    {"user", true},  {"map", true},  {"set", true},  {"lookup", true},     {"skip-existing", false}, {"help", false},
};

const OptionRow* optionRow(const QString& name)
{
  for (const OptionRow& option : options) {
    if (name == QLatin1StringView(option.name)) {
      return &option;
    }
  }
  return nullptr;
}

// "NAME=VALUE" pairs of an option.
QHash<QString, QString> optionPairs(const QStringList& texts)
{
  QHash<QString, QString> pairs;
  for (const QString& text : texts) {
    pairs.insert(text.section(u'=', 0, 0), text.section(u'=', 1));
  }
  return pairs;
}

int load(const CommandLine& line)
{
  if (line.files().size() != 1 || !line.has(QStringLiteral("table"))) {
    std::fputs(usage, stderr);
    return 2;
  }
  QFile file(line.files().first());
  if (!file.open(QIODevice::ReadOnly)) {
    throw std::runtime_error(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()).toStdString());
  }
  LoadRequest request;
  request.table = line.value(QStringLiteral("table"));
  request.fileName = QFileInfo(file).fileName();
  request.companyId = line.value(QStringLiteral("company"), QStringLiteral("1"));
  request.userId = line.value(QStringLiteral("user"), QStringLiteral("SUPERVSR"));
  request.map = optionPairs(line.all(QStringLiteral("map")));
  request.constants = optionPairs(line.all(QStringLiteral("set")));
  for (const QString& text : line.all(QStringLiteral("lookup"))) {
    const QString source = text.section(u'=', 1);
    request.lookups.append({text.section(u'=', 0, 0), source.section(u'.', 0, 0),
                            source.section(u'.', 1).section(u':', 0, 0), source.section(u':', 1)});
  }
  request.existing = line.has(QStringLiteral("skip-existing")) ? ExistingRecords::Skip : ExistingRecords::Refuse;
  prepareDatabase(line.database());
  const auto connection = openSqlite(line.database(), false);
  const QByteArray csv = file.readAll();
  const LoadResult result = bulkLoad(*connection, request, csv);
  std::printf("%lld rows loaded, %lld skipped\n", static_cast<long long>(result.rows), static_cast<long long>(result.skipped));
  return 0;
}

}  // namespace

CommandLine::CommandLine(const QStringList& arguments)
{
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments.at(i);
    if (!argument.startsWith(u"--")) {
      if (command_.isEmpty()) {
        command_ = argument;
      } else {
        files_.append(argument);
      }
      continue;
    }
    const QString name = argument.mid(2);
    const OptionRow* option = optionRow(name);
    if (!option || (option->takesValue && i + 1 >= arguments.size())) {
      throw std::runtime_error("unknown or incomplete option " + argument.toStdString());
    }
    values_[name].append(option->takesValue ? arguments.at(++i) : QString());
  }
}

QString CommandLine::value(const QString& name, const QString& otherwise) const
{
  const QStringList given = values_.value(name);
  return given.isEmpty() ? otherwise : given.last();
}

QString CommandLine::database() const
{
  if (has(QStringLiteral("db"))) {
    return value(QStringLiteral("db"));
  }
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/kalvor");
  QDir().mkpath(folder);
  return folder + QStringLiteral("/kalvor.db");
}

void prepareDatabase(const QString& fileName)
{
  const auto connection = openSqlite(fileName, false);
  migrate(*connection);
  if (!hasCompanies(*connection)) {
    logEvent(LogLevel::Info, "demo_company", {{"database", fileName}});
    DemoOptions demo;
    demo.hashDigest = hashDigest;
    createDemoCompany(*connection, demo);
  }
}

int runCommand(const CommandLine& line)
{
  if (line.command() == u"init") {
    prepareDatabase(line.database());
    return 0;
  }
  if (line.command() == u"load") {
    return load(line);
  }
  std::fputs(usage, line.has(QStringLiteral("help")) ? stdout : stderr);
  return line.has(QStringLiteral("help")) ? 0 : 2;
}

}  // namespace kalvor::server
