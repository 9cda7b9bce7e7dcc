// Posting of sale documents of 10 and of 100 lines, a call each as the server runs it, against the bare database putting
// the same rows into the same tables in one transaction a document. A file each, both waiting for the disk.
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

#include "bare_database.h"
#include "server/demo/demo_company.h"
#include "server/load/id_sequence.h"
#include "server/load/sale_amounts.h"
#include "server/operations/operation.h"
#include "server/operations/passwords.h"
#include "server/store/migrations.h"

using namespace kalvor;
using namespace kalvor::bench;
using namespace kalvor::server;

namespace {

constexpr int documentsEach = 100;

// What a posting writes, and by which column a posted document's rows are found.
struct WrittenTable {
  const char* name;
  const char* where;
};
constexpr WrittenTable writtenTables[] = {
    {"D_SaleInvoiceHeader", "Id = ?1"}, {"D_SaleInvoiceLine", "Master_Id = ?1"}, {"D_ShipmentHeader", "AppliesToDoc_Id = ?1"},
    {"D_ShipmentLine", "Master_Id IN (SELECT Id FROM D_ShipmentHeader WHERE AppliesToDoc_Id = ?1)"},
    {"G_ItemEntry", "Document_Id IN (SELECT Id FROM D_ShipmentHeader WHERE AppliesToDoc_Id = ?1)"},
    {"G_ItemValueEntry", "Document_Id = ?1"}, {"G_Entry", "Document_Id = ?1"}, {"G_VATEntry", "Document_Id = ?1"},
    {"G_ContragentEntry", "Document_Id = ?1"}, {"G_ContragentEntryDetail", "Document_Id = ?1"}};

// Documents of so many lines with goods of the demo, one piece each.
QStringList addDocuments(Connection& db, int lines)
{
  const RecordSet items = db.query(QStringLiteral(
      "SELECT N_Item.Code, VATProdPostGroup_Id, VATPercent, VATBus_PostingGroup, GenProdPostGroup_Id FROM N_Item, G_VATPostingSetup s, "
      "N_VATBusPostGroup b WHERE N_Item.Comp_Id = '1' AND Type = 1 AND s.Comp_Id = '1' AND VATProd_PostingGroup = VATProdPostGroup_Id "
      "AND b.Id = VATBus_PostingGroup AND b.Code = 'BG' ORDER BY N_Item.Code"));
  const Variant subType = db.value(QStringLiteral("SELECT Id FROM N_SubDocument WHERE Comp_Id = '1' AND Code = 'SALE-SOF'"));
  const Variant general = db.value(QStringLiteral("SELECT Id FROM N_GenBusPostGroup WHERE Comp_Id = '1' AND Code = 'DOMESTIC'"));
  const Variant customer = db.value(QStringLiteral("SELECT MIN(Id) FROM N_Contragent WHERE Comp_Id = '1'"));
  QStringList ids;
  IdSequence sequence;
  Transaction transaction(db);
  for (int d = 0; d < documentsEach; ++d) {
    const QString id = sequence.next();
    SaleTotalsBuilder sums;
    QList<VariantArray> rows;
    for (int i = 0; i < lines; ++i) {
      const qsizetype item = (d * 37 + i * 11) % items.rows;
      const SaleLineInput input{amountScale, (100 + i) * amountScale / 100, 0, scaled(items.value(item, 2).toDouble())};
      const SaleLineAmounts amounts = saleLineAmounts(input, {});
      sums.add(input.vatPercent, amounts.totalValue, amounts.totalValueLcy);
      rows.append({sequence.next(), id, i + 1, items.value(item, 0), input.unitPrice, input.vatPercent, items.value(item, 3),
                   items.value(item, 1), general, items.value(item, 4), amounts.totalValue, amounts.totalValueLcy, amounts.vatValue});
    }
    const SaleTotals totals = sums.totals({});
    db.execute(QStringLiteral("INSERT INTO D_GlobalSaleHeader (Id, Comp_Id, DocumentNo, DocumentDate, DocSubType_Id, Contragent_Id, "
                              "BusinessGroup_Id, C_Businessgroup_Id, GenBusPostGroup_Id, TotalValue, VATValue, TotalVAT, TotalValue_LCY, "
                              "VATValue_LCY, TotalVAT_LCY) VALUES (?, '1', ?, '20260715', ?, ?, '1', '1', ?, ?, ?, ?, ?, ?, ?)"),
               {id, QString::number(d), subType, customer, general, totals.totalValue, totals.vatValue, totals.totalVat,
                totals.totalValueLcy, totals.vatValueLcy, totals.totalVatLcy});
    for (const VariantArray& row : std::as_const(rows))
      db.execute(QStringLiteral("INSERT INTO D_GlobalSaleLine (Id, Comp_Id, Master_Id, Line_No, Type, Code, Quantity, Quantity_Base, UnitPrice, "
                                "VATPercent, VATBusPostGroup_Id, VATProdPostGroup_Id, GenBusPostGroup_Id, GenProdPostGroup_Id, TotalValue, "
                                "TotalValue_LCY, VATValue, VATLedger) VALUES (?, '1', ?, ?, 1, ?, 1000000, 1000000, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1)"), row);
    ids.append(id);
  }
  transaction.commit();
  return ids;
}

using BareRow = std::vector<sqlite3_value*>;
struct BareTable {
  sqlite3_stmt* insert = nullptr;
  std::vector<BareRow> rows;
};

BareTable rowsOf(BareDatabase& from, BareDatabase& to, const WrittenTable& table, const QByteArray& document)
{
  BareTable result;
  sqlite3_stmt* select = from.prepare(("SELECT * FROM " + QByteArray(table.name) + " WHERE " + table.where).constData());
  sqlite3_bind_text(select, 1, document.constData(), -1, SQLITE_TRANSIENT);
  QByteArray marks;
  for (int i = 0; i < sqlite3_column_count(select); ++i)
    marks += i ? ", ?" : "?";
  while (sqlite3_step(select) == SQLITE_ROW) {
    BareRow row;
    for (int i = 0; i < sqlite3_column_count(select); ++i)
      row.push_back(sqlite3_value_dup(sqlite3_column_value(select, i)));
    result.rows.push_back(std::move(row));
  }
  sqlite3_finalize(select);
  result.insert = to.prepare(("INSERT INTO " + QByteArray(table.name) + " VALUES (" + marks + ")").constData());
  return result;
}

void insertAll(const std::vector<BareTable>& tables)
{
  for (const BareTable& table : tables)
    for (const BareRow& row : table.rows) {
      for (size_t i = 0; i < row.size(); ++i)
        sqlite3_bind_value(table.insert, int(i) + 1, row[i]);
      if (sqlite3_step(table.insert) != SQLITE_DONE)
        qFatal("insert");
      sqlite3_reset(table.insert);
    }
}

void compare(const QString& folder, int lines)
{
  const QString file = folder + QStringLiteral("/posting%1.db").arg(lines);
  const QString bareFile = folder + QStringLiteral("/bare%1.db").arg(lines);
  QStringList documents;
  {
    const auto db = openSqlite(file, false);
    migrate(*db);
    DemoOptions demo;
    demo.hashDigest = hashDigest;
    demo.contragents = 50;
    demo.invoices = 50;
    createDemoCompany(*db, demo);
    documents = addDocuments(*db, lines);
    db->execute(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
  }
  QFile::copy(file, bareFile);
  ServerCore core(ServerCore::Databases::of(file));
  const auto writer = core.openWriter();
  Session session;
  session.peer = QStringLiteral("bench");
  VariantArray logIn{QStringLiteral("SUPERVSR"), QStringLiteral("fe01ce2a7fbac8fafaed7c982a04e229"), QStringLiteral("1"), QStringLiteral("1"), QString()};
  if (runOperation(core, *writer, session, *findOperation(QStringLiteral("LogIn")), logIn).toInt() != 0)
    qFatal("log-in");
  const Operation& post = *findOperation(QStringLiteral("PostGlobalDoc"));
  QList<QByteArray> posted;
  const double ours = medianMs(documentsEach, [&] {
    VariantArray arguments{documents.at(posted.size()), 500, Variant()};
    if (runOperation(core, *writer, session, post, arguments, documents.at(posted.size())).toInt() != 0)
      qFatal("post");
    posted.append(arguments.at(2).toList().first().toString().toUtf8());
  });
  BareDatabase from(file), to(bareFile);
  std::vector<double> times;
  int rows = 0;
  for (const QByteArray& document : std::as_const(posted)) {
    std::vector<BareTable> tables;
    rows = 0;
    for (const WrittenTable& table : writtenTables) {
      tables.push_back(rowsOf(from, to, table, document));
      rows += int(tables.back().rows.size());
    }
    times.push_back(medianMs(1, [&] {
      to.run("BEGIN IMMEDIATE");
      insertAll(tables);
      to.run("COMMIT");
    }));
    for (BareTable& table : tables) {
      sqlite3_finalize(table.insert);
      for (BareRow& row : table.rows)
        for (sqlite3_value* value : row)
          sqlite3_value_free(value);
    }
  }
  std::sort(times.begin(), times.end());
  line(qPrintable(QStringLiteral("post a document of %1 lines").arg(lines)), ours,
       qPrintable(QStringLiteral("bare SQL of its %1 rows").arg(rows)), times[times.size() / 2]);
  std::printf("%46.0f documents a second\n", 1000 / ours);
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  setPasswordCost(PasswordCost::CheapForTests);
  const QTemporaryDir folder;
  compare(folder.path(), 10);
  compare(folder.path(), 100);
  return 0;
}
