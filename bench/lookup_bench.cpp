// A lookup over 100,000 items while its text is being typed: from the end of the pause to the matches that drop down,
// against an empty call and the bare query of the same records. Medians of one run over the loopback.
#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

#include "registry/lookup_matches.h"
#include "server/demo/demo_company.h"
#include "server/operations/passwords.h"
#include "server/server_core.h"
#include "server_process.h"
#include "timing.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int itemForm = 150;
constexpr int runs = 201;

void makeItems(server::Connection& db)
{
  server::DemoOptions demo;
  demo.hashDigest = server::hashDigest;
  demo.contragents = 20;
  demo.items = 20;
  demo.invoices = 1;
  server::createDemoCompany(db, demo);
  db.execute(QStringLiteral(
                 "INSERT INTO N_Item (Id, Comp_Id, Code, Name, Type, Inactive) "
                 "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 99999) "
                 "SELECT printf('bench%08d', i), '1', printf('9%06d', i), "
                 "CASE i % 4 WHEN 0 THEN 'Болт ' WHEN 1 THEN 'Гайка ' WHEN 2 THEN 'Шайба ' ELSE 'Винт ' END || i, 1, 0 FROM n"),
             {});
}

qsizetype bareRows(server::Connection& db, const QString& field, const QString& from, const QString& to, const QString& like)
{
  const bool prefix = !from.isEmpty();
  const auto statement = db.prepare(
      QStringLiteral("SELECT Id, Comp_Id, Code, Name, ItemGroup_Id, Type, Measure_Id, UnitPrice FROM N_Item WHERE Comp_Id = ?") +
      (prefix ? QStringLiteral(" AND %1 >= ? AND %1 < ?").arg(field) : QString()) +
      QStringLiteral(" AND %1 LIKE ? ORDER BY %1 LIMIT 20").arg(field));
  int at = 0;
  statement->bind(at++, QStringLiteral("1"));
  if (prefix) {
    statement->bind(at++, from);
    statement->bind(at++, to);
  }
  statement->bind(at, like);
  qsizetype rows = 0;
  while (statement->step())
    rows += statement->value(2).isNull() ? 0 : 1;
  statement->reset();
  return rows;
}

LookupQuestion questionFor(const QString& text)
{
  LookupQuestion question;
  question.formId = itemForm;
  question.text = text;
  question.shownField = QStringLiteral("Code");
  question.filter = {FilterRow{QStringLiteral("N_Item.Code"), QStringLiteral("LIKE"), text, {}, {}}};
  question.typedRows = {0};
  return question;
}

void report(const char* what, double ours, double emptyCall, double bare, qsizetype rows)
{
  std::printf("%-34s %8.3f ms  %3lld records | empty call %6.3f + bare query %8.3f ms | ratio %6.2f\n", what, ours,
              static_cast<long long>(rows), emptyCall, bare, ours / (emptyCall + bare));
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  try {
    QTemporaryDir folder;
    const QString database = folder.filePath(QStringLiteral("bench.db"));
    const server::ServerCore core(server::ServerCore::Databases::of(database));
    makeItems(*core.openWriter());
    ServerProcess process;
    if (process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/kalvor-server"), database) < 0)
      throw DataError(QStringLiteral("start"));
    Workstation station(process.port());
    LookupFinder finder(station.broker());
    const auto db = core.openReader();
    const double emptyCall = medianMs(runs, [&] { station.broker().Call(QStringLiteral("servername")); });
    qsizetype rows = 0;
    const auto measured = [&](const QString& text) {
      return medianMs(runs, [&] { rows = finder.find(questionFor(text)).rows.size(); });
    };

    const QString code = QStringLiteral("9012"), name = QStringLiteral("Винт 77"), inside = QStringLiteral("9773");
    const double byCode = measured(code);
    report("beginning of a code", byCode, emptyCall,
           medianMs(runs, [&] { bareRows(*db, QStringLiteral("Code"), code, QStringLiteral("9013"), code + u'%'); }), rows);
    const double byName = measured(name);
    report("beginning of a name", byName, emptyCall, medianMs(runs, [&] {
             bareRows(*db, QStringLiteral("Code"), name, QStringLiteral("Винт 78"), name + u'%');
             bareRows(*db, QStringLiteral("Name"), name, QStringLiteral("Винт 78"), name + u'%');
           }), rows);
    const double anywhere = measured(QStringLiteral("т ") + inside);
    report("inside a name", anywhere, emptyCall, medianMs(runs, [&] {
             bareRows(*db, QStringLiteral("Name"), QString(), QString(), QStringLiteral("%т ") + inside + u'%');
           }), rows);
  } catch (const std::exception& error) {
    std::printf("FAILED %s\n", error.what());
    return 1;
  }
  return 0;
}
