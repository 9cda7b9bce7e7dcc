// Prices and discounts of lines among a million rules, asked over the loopback, against the bare database finding the
// same row and one empty call. Medians of one run.
//
//   price_bench [--rules N]
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDate>
#include <QTemporaryDir>

#include "bare_database.h"
#include "server_process.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int contragentCount = 1000;
constexpr int calls = 4001;

struct Item {
  QString id, code, measureId;
};

QList<Item> readItems(BareDatabase& bare)
{
  QList<Item> items;
  sqlite3_stmt* rows = bare.prepare("SELECT Id, Code, Measure_Id FROM N_Item WHERE Comp_Id = '1' ORDER BY Code");
  const auto text = [&](int column) {
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(rows, column)));
  };
  while (sqlite3_step(rows) == SQLITE_ROW)
    items.append({text(0), text(1), text(2)});
  sqlite3_finalize(rows);
  return items;
}

QByteArray contragentId(int number) { return QByteArray("BENCH") + QByteArray::number(number).rightJustified(6, '0'); }

// One row for every pair of an item and a contractor, as many as are wanted; the value grows with the contractor.
void fillPairs(BareDatabase& bare, const QList<Item>& items, int rules, const char* sql)
{
  sqlite3_stmt* insert = bare.prepare(sql);
  for (int i = 0; i < rules; ++i) {
    const Item& item = items.at(i / contragentCount);
    const QByteArray contragent = contragentId(i % contragentCount + 1);
    const QByteArray id = item.code.toUtf8() + contragent;
    const QByteArray itemId = item.id.toUtf8();
    const QByteArray measureId = item.measureId.toUtf8();
    sqlite3_bind_text(insert, 1, id.constData(), -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 2, itemId.constData(), -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 3, contragent.constData(), -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 4, measureId.constData(), -1, SQLITE_STATIC);
    sqlite3_bind_int64(insert, 5, 1'000'000 + i % contragentCount * 10'000);
    if (sqlite3_step(insert) != SQLITE_DONE)
      throw DataError(QStringLiteral("a rule was not inserted"));
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
}

// Without a journal and without the indexes while they come in: only the finished database is measured.
void makeRules(BareDatabase& bare, const QList<Item>& items, int rules)
{
  bare.run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-200000; BEGIN; "
           "DROP INDEX IX_N_ItemPrice; DROP INDEX IX_N_ItemDiscount_Item; DROP INDEX IX_N_ItemDiscount_Group");
  fillPairs(bare, items, rules,
            "INSERT INTO N_ItemPrice (Id, Comp_Id, Side, Item_Id, Contragent_Id, Measure_Id, UnitPrice) "
            "VALUES (?1, '1', 1, ?2, ?3, ?4, ?5)");
  fillPairs(bare, items, rules,
            "INSERT INTO N_ItemDiscount (Id, Comp_Id, Side, Item_Id, Contragent_Id, Measure_Id, DiscountPercent) "
            "VALUES (?1, '1', 1, ?2, ?3, ?4, ?5)");
  bare.run("CREATE INDEX IX_N_ItemPrice ON N_ItemPrice (Comp_Id, Item_Id, Side, Measure_Id, Contragent_Id, StartDate);"
           "CREATE INDEX IX_N_ItemDiscount_Item ON N_ItemDiscount (Comp_Id, Item_Id, Side, Contragent_Id);"
           "CREATE INDEX IX_N_ItemDiscount_Group ON N_ItemDiscount (Comp_Id, ItemGroup_Id, Side, Contragent_Id);"
           "COMMIT; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL");
}

// The bare database's way to the nearest row: one prepared statement from item code and contractor to the answer.
class BareLookup {
 public:
  BareLookup(BareDatabase& bare, const char* sql) : statement_(bare.prepare(sql)) {}
  ~BareLookup() { sqlite3_finalize(statement_); }
  double find(const QString& code, const QString& contragent)
  {
    const QByteArray codeText = code.toUtf8(), contragentText = contragent.toUtf8();
    sqlite3_bind_text(statement_, 1, codeText.constData(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(statement_, 2, contragentText.constData(), -1, SQLITE_TRANSIENT);
    const double found = sqlite3_step(statement_) == SQLITE_ROW ? sqlite3_column_double(statement_, 0) / 1e6 : -1;
    sqlite3_reset(statement_);
    return found;
  }

 private:
  sqlite3_stmt* statement_;
};

constexpr const char* barePrice =
    "SELECT p.UnitPrice FROM N_Item CROSS JOIN N_ItemPrice p ON p.Comp_Id = '1' AND p.Item_Id = N_Item.Id AND p.Side = 1 AND "
    "p.Measure_Id = N_Item.Measure_Id AND p.Contragent_Id = ?2 WHERE N_Item.Comp_Id = '1' AND N_Item.Code = ?1 AND "
    "p.MinQuantity <= 1000000 AND (p.StartDate IS NULL OR p.StartDate <= '20260601') AND "
    "(p.EndDate IS NULL OR p.EndDate >= '20260601') ORDER BY p.MinQuantity DESC, p.StartDate DESC LIMIT 1";
constexpr const char* bareDiscount =
    "SELECT d.DiscountPercent FROM N_Item CROSS JOIN N_ItemDiscount d ON d.Comp_Id = '1' AND d.Item_Id = N_Item.Id AND "
    "d.Side = 1 AND d.Contragent_Id = ?2 WHERE N_Item.Comp_Id = '1' AND N_Item.Code = ?1 AND d.MinQuantity <= 1000000 "
    "AND (d.StartDate IS NULL OR d.StartDate <= '20260601') AND (d.EndDate IS NULL OR d.EndDate >= '20260601') "
    "ORDER BY d.MinQuantity DESC, d.StartDate DESC LIMIT 1";

class LineCaller {
 public:
  LineCaller(Workstation& station, QList<Item> items, int pairs)
      : station_(station), items_(std::move(items)), pairs_(pairs) {}

  // The next pair of an item and a contractor, far from the last.
  void next()
  {
    place_ = (place_ + 7'368'787) % pairs_;
    item_ = &items_.at(place_ / contragentCount);
    contragent_ = QString::fromLatin1(contragentId(place_ % contragentCount + 1));
  }
  double price()
  {
    const VariantArray request{contragent_, item_->code, item_->measureId, 1.0, QDate(2026, 6, 1), 1.0, Variant(),
                               Variant(), 0, 1.0, 1};
    return ask(QStringLiteral("GetSaleLinePrice"), request);
  }
  double discount()
  {
    const VariantArray request{contragent_, item_->code, item_->measureId, 1.0, Variant(), QDate(2026, 6, 1), 1.0, 0,
                               Variant(), 1};
    return ask(QStringLiteral("GetSaleLineDiscount"), request);
  }
  const QString& code() const { return item_->code; }
  const QString& contragent() const { return contragent_; }

 private:
  double ask(const QString& operation, const VariantArray& request)
  {
    VariantArray arguments{Variant(request), 0.0, 0.0};
    if (station_.broker().Call(operation, arguments).toInt() != 0)
      throw DataError(operation);
    return arguments.at(1).toDouble();
  }

  Workstation& station_;
  QList<Item> items_;
  int pairs_;
  int place_ = 0;
  const Item* item_ = nullptr;
  QString contragent_;
};

void compare(const char* what, LineCaller& lines, double (LineCaller::*ask)(), BareLookup bare, double emptyCall)
{
  for (int i = 0; i < 100; ++i) {
    lines.next();
    if ((lines.*ask)() != bare.find(lines.code(), lines.contragent()))
      throw DataError(QStringLiteral("the server and the bare database found different rows"));
  }
  const double ours = medianMs(calls, [&] { lines.next(); (lines.*ask)(); });
  const double theirs = medianMs(calls, [&] { lines.next(); bare.find(lines.code(), lines.contragent()); });
  line(what, ours, "bare SQL lookup + one empty call", theirs + emptyCall);
}

// The items and how many rules they got.
std::pair<QList<Item>, int> fill(const QString& database, int wanted)
{
  BareDatabase filled(database);
  const QList<Item> items = readItems(filled);
  const int rules = std::min<int>(wanted, int(items.size()) * contragentCount);
  QElapsedTimer making;
  making.start();
  makeRules(filled, items, rules);
  std::printf("%d price rules and as many discounts of %lld items made in %.1f s\n", rules,
              static_cast<long long>(items.size()), double(making.elapsed()) / 1e3);
  return {items, rules};
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOption({QStringLiteral("rules"), QString(), QStringLiteral("N"), QStringLiteral("1000000")});
  parser.process(application);
  const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/kalvor-server");
  try {
    QTemporaryDir folder;
    const QString database = folder.filePath(QStringLiteral("bench.db"));
    if (QProcess::execute(program, {QStringLiteral("init"), QStringLiteral("--db"), database}) != 0)
      throw DataError(QStringLiteral("init"));
    const auto [items, rules] = fill(database, parser.value(QStringLiteral("rules")).toInt());
    BareDatabase bare(database);
    ServerProcess server;
    if (server.start(program, database) < 0)
      throw DataError(QStringLiteral("start"));
    Workstation station(server.port());
    const double emptyCall = medianMs(calls, [&] { station.broker().Call(QStringLiteral("servername")); });
    std::printf("%-46s %10.3f ms\n", "empty call", emptyCall);
    LineCaller lines(station, items, rules);
    compare("price of a sale line", lines, &LineCaller::price, BareLookup(bare, barePrice), emptyCall);
    compare("discount of a sale line", lines, &LineCaller::discount, BareLookup(bare, bareDiscount), emptyCall);
  } catch (const DataError& error) {
    std::printf("FAILED %s\n", qPrintable(error.message()));
    return 1;
  }
  return 0;
}
