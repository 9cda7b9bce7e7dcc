// The server against the bare database doing the same: start, empty call, a record set over loopback, the first page
// of a long list, the save of a long document. Ratios from one run; medians.
//
//   server_bench [--invoices N] [--rows N]
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUuid>
#include <algorithm>
#include <cstdio>
#include <thread>

#include "bare_database.h"
#include "server_process.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int benchForm = 9000;

// So many bytes through a socket of the loopback, as one side writes and the other reads.
double rawSocketMs(qint64 bytes)
{
  QTcpServer server;
  server.listen(QHostAddress::LocalHost);
  const quint16 port = server.serverPort();
  std::thread sender([port, bytes] {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    socket.waitForConnected();
    const QByteArray block(1 << 20, 'x');
    for (qint64 left = bytes; left > 0; left -= block.size()) {
      socket.write(block.constData(), std::min<qint64>(left, block.size()));
      socket.waitForBytesWritten();
    }
    socket.disconnectFromHost();
    if (socket.state() != QAbstractSocket::UnconnectedState)
      socket.waitForDisconnected();
  });
  server.waitForNewConnection(5000);
  QTcpSocket* peer = server.nextPendingConnection();
  QElapsedTimer timer;
  timer.start();
  qint64 got = 0;
  while (got < bytes && (peer->bytesAvailable() || peer->waitForReadyRead(5000)))
    got += peer->readAll().size();
  const double ms = timer.nsecsElapsed() / 1e6;
  sender.join();
  return ms;
}

// 3 integers, 4 amounts, a date, 4 Cyrillic texts.
void makeBenchTable(BareDatabase& db, int rows)
{
  db.run("CREATE TABLE D_Bench (Id VARCHAR(32) NOT NULL PRIMARY KEY, N1 INTEGER, N2 INTEGER, A1 AMOUNT, A2 AMOUNT, "
         "A3 AMOUNT, A4 AMOUNT, DocDate DATE, T1 VARCHAR(60), T2 VARCHAR(60), T3 VARCHAR(60), N3 INTEGER)");
  const QByteArray fill =
      QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) INSERT INTO D_Bench "
                     "SELECT printf('%032d', i), i, i * 7 % 1000, i * 1230000, i * 770000, i * 10000, i * 1000000, "
                     "printf('2025%02d%02d', i % 12 + 1, i % 28 + 1), 'Контрагент номер ' || i % 5000, "
                     "'гр. Велико Търново', 'Бележка към ред ' || i, i % 3 FROM n")
          .arg(rows).toUtf8();
  db.run(fill.constData());
  const QByteArray query =
      QStringLiteral("INSERT INTO S_QueryList (Id, Description, Form_Id, Ds_Index, SqlText, BaseTable, KeyField, DefaultOrder) "
                     "VALUES (%1, 'bench', %1, 0, 'SELECT D_Bench.Id AS Id, D_Bench.N1 AS N1, D_Bench.N2 AS N2, "
                     "D_Bench.N3 AS N3, D_Bench.A1 AS A1, D_Bench.A2 AS A2, D_Bench.A3 AS A3, D_Bench.A4 AS A4, "
                     "D_Bench.DocDate AS DocDate, D_Bench.T1 AS T1, D_Bench.T2 AS T2, D_Bench.T3 AS T3 FROM D_Bench', "
                     "'D_Bench', 'D_Bench.Id', 'D_Bench.Id')").arg(benchForm).toUtf8();
  db.run(query.constData());
  int index = 0;
  for (const char* name : {"Id", "N1", "N2", "N3", "A1", "A2", "A3", "A4", "DocDate", "T1", "T2", "T3"}) {
    const QByteArray field = QStringLiteral("INSERT INTO S_FieldList (SQL_ID, FieldName, Caption, FieldType, Required, Updatable, "
                                            "Visible, Filterable, ReadOnly, CopyField, Origin, FieldIndex, FieldFilter) VALUES "
                                            "(%1, '%2', '%2', '0', '0', '1', '1', '1', '0', '0', 'D_Bench', %3, 'D_Bench.%2')")
                                 .arg(benchForm).arg(QLatin1String(name)).arg(index++).toUtf8();
    db.run(field.constData());
  }
}

double residentMb(qint64 processId)
{
  QFile status(QStringLiteral("/proc/%1/status").arg(processId));
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  for (const QByteArray& row : status.readAll().split('\n'))
    if (row.startsWith("VmRSS:"))
      return row.mid(6).trimmed().split(' ').first().toDouble() / 1024;
  return 0;
}

void benchRecordSet(Workstation& station, BareDatabase& bare, double emptyCall, int rows)
{
  const QString provider = station.newProvider();
  qint64 bytes = 0;
  const double ours = medianMs(5, [&] {
    TClientDataSet dataSet;
    station.request(benchForm, 0, provider);
    dataSet.SetRemoteServer(&station.broker());
    dataSet.ProviderName = provider;
    dataSet.PacketRecords = -1;
    dataSet.Open();
    if (dataSet.RecordCount() != rows)
      throw DataError(QStringLiteral("%1 rows").arg(dataSet.RecordCount()));
  });
  const double read = medianMs(5, [&] {
    bytes = bare.readAll("SELECT Id, N1, N2, N3, A1, A2, A3, A4, DocDate, T1, T2, T3 FROM D_Bench ORDER BY Id");
  });
  const double socket = medianMs(5, [&] { rawSocketMs(bytes); });
  Q_UNUSED(emptyCall);
  const QByteArray what = QStringLiteral("%1 rows x 12 into a client dataset").arg(rows).toUtf8();
  line(what.constData(), ours, "raw SQLite read + raw socket", read + socket);
}

void benchList(Workstation& station, BareDatabase& bare, double emptyCall, int invoices)
{
  const QString provider = station.newProvider();
  const auto firstPage = [&] {
    station.request(120, 0, provider);
    TClientDataSet list;
    list.SetRemoteServer(&station.broker());
    list.ProviderName = provider;
    list.PacketRecords = 32;
    list.Open();
    if (list.RecordCount() != 32)
      throw DataError(QStringLiteral("%1 rows in the first page").arg(list.RecordCount()));
  };
  const double ours = medianMs(101, firstPage);
  const double page = medianMs(101, [&] {
    bare.readAll("SELECT D_SaleInvoiceHeader.Id, DocumentNo, DocumentDate, Contragent_Id, N_Contragent.Code, N_Contragent.Name, "
                 "TotalValue, VATValue, TotalVAT, D_SaleInvoiceHeader.Currency_Id, DueDate, DocStatus, D_SaleInvoiceHeader.C_User_Id "
                 "FROM D_SaleInvoiceHeader LEFT JOIN N_Contragent ON N_Contragent.Id = D_SaleInvoiceHeader.Contragent_Id "
                 "WHERE D_SaleInvoiceHeader.Comp_Id = '1' "
                 "ORDER BY DocumentDate DESC, DocumentNo DESC, D_SaleInvoiceHeader.Id DESC LIMIT 32");
  });
  const QByteArray what = QStringLiteral("first 32 of %1 invoices (request and open)").arg(invoices).toUtf8();
  line(what.constData(), ours, "bare SQL page + one empty call", page + emptyCall);
}

void benchSave(Workstation& station, BareDatabase& bare)
{
  const QString headerProvider = station.newProvider();
  const QString lineProvider = station.newProvider();
  const auto build = [&]() -> VariantArray {
    TClientDataSet header, lines;
    const FilterArray none{{QStringLiteral("1"), QStringLiteral("="), 2, {}, {}}};
    for (auto [dataSet, provider, index] :
         {std::tuple(&header, headerProvider, 0), std::tuple(&lines, lineProvider, 1)}) {
      station.request(121, index, provider, none);
      dataSet->SetRemoteServer(&station.broker());
      dataSet->ProviderName = provider;
      dataSet->Open();
      for (TField* field : dataSet->Fields())
        field->Required = false;
    }
    const auto newId = [] { return QUuid::createUuid().toString(QUuid::Id128).toUpper(); };
    const QString id = newId();
    header.Append();
    header.FieldByName(u"Id")->SetAsString(id);
    header.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
    header.FieldByName(u"DocumentDate")->SetValue(QDate(2026, 6, 1));
    header.FieldByName(u"DocumentNo")->SetAsString(QStringLiteral("B-1"));
    header.Post();
    for (int i = 1; i <= 100; ++i) {
      lines.Append();
      lines.FieldByName(u"Id")->SetAsString(newId());
      lines.FieldByName(u"Comp_Id")->SetAsString(QStringLiteral("1"));
      lines.FieldByName(u"Master_Id")->SetAsString(id);
      lines.FieldByName(u"Line_No")->SetAsInteger(i);
      lines.FieldByName(u"Type")->SetAsInteger(1);
      lines.FieldByName(u"Description")->SetAsString(QStringLiteral("Артикул %1").arg(i));
      lines.FieldByName(u"Quantity")->SetAsFloat(i);
      lines.FieldByName(u"UnitPrice")->SetAsFloat(1.25);
      lines.Post();
    }
    return {VariantArray{VariantArray{headerProvider, QVariant::fromValue(header.GetDelta())},
                         VariantArray{lineProvider, QVariant::fromValue(lines.GetDelta())}},
            Variant()};
  };
  std::vector<VariantArray> packets;
  for (int i = 0; i < 21; ++i)
    packets.push_back(build());
  size_t next = 0;
  const double ours = medianMs(21, [&] {
    if (station.broker().Call(QStringLiteral("UpdateClientData"), packets[next++]).toInt() != 0)
      throw DataError(QStringLiteral("UpdateClientData"));
  });
  int document = 0;
  const double raw = medianMs(21, [&] {
    bare.run("BEGIN IMMEDIATE");
    const QByteArray id = QStringLiteral("BARE%1").arg(++document, 28, 10, QLatin1Char('0')).toUtf8();
    sqlite3_stmt* header = bare.prepare("INSERT INTO D_SaleInvoiceHeader (Id, Comp_Id, DocumentDate, DocumentNo, C_User_Id, C_Datetime) "
                                        "VALUES (?, '1', '20260601', 'B-1', 'SUPERVSR', '20260601T101010')");
    sqlite3_bind_text(header, 1, id.constData(), -1, SQLITE_TRANSIENT);
    sqlite3_step(header);
    sqlite3_finalize(header);
    sqlite3_stmt* insert = bare.prepare("INSERT INTO D_SaleInvoiceLine (Id, Comp_Id, Master_Id, Line_No, Type, Description, Quantity, UnitPrice) "
                                        "VALUES (?, '1', ?, ?, 1, ?, ?, 1250000)");
    for (int i = 1; i <= 100; ++i) {
      const QByteArray lineId = id.left(20) + QByteArray::number(document * 1000 + i).rightJustified(12, '0');
      const QByteArray text = QStringLiteral("Артикул %1").arg(i).toUtf8();
      sqlite3_bind_text(insert, 1, lineId.constData(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(insert, 2, id.constData(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(insert, 3, i);
      sqlite3_bind_text(insert, 4, text.constData(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int64(insert, 5, qint64(i) * 1000000);
      if (sqlite3_step(insert) != SQLITE_DONE)
        throw DataError(QStringLiteral("the bare insert failed"));
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    bare.run("COMMIT");
  });
  line("save of a document of 100 lines", ours, "bare SQL transaction", raw);
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOptions({{QStringLiteral("invoices"), QString(), QStringLiteral("N"), QStringLiteral("1000000")},
                     {QStringLiteral("rows"), QString(), QStringLiteral("N"), QStringLiteral("100000")}});
  parser.process(application);
  const int invoices = parser.value(QStringLiteral("invoices")).toInt();
  const int rows = parser.value(QStringLiteral("rows")).toInt();
  const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/kalvor-server");
  try {
    QTemporaryDir folder;
    const QString database = folder.filePath(QStringLiteral("bench.db"));
    QElapsedTimer making;
    making.start();
    if (QProcess::execute(program, {QStringLiteral("init"), QStringLiteral("--db"), database, QStringLiteral("--invoices"),
                                    QString::number(invoices)}) != 0)
      throw DataError(QStringLiteral("init"));
    std::printf("demo company with %d invoices made in %.1f s, %.0f MB\n", invoices, making.elapsed() / 1e3,
                QFileInfo(database).size() / 1048576.0);
    BareDatabase bare(database);
    makeBenchTable(bare, rows);

    std::vector<double> starts;
    for (int i = 0; i < 5; ++i)
      starts.push_back(ServerProcess().start(program, database));
    std::sort(starts.begin(), starts.end());
    std::printf("%-46s %10.3f ms\n", "server start to listening", starts[2]);

    ServerProcess server;
    if (server.start(program, database) < 0)
      throw DataError(QStringLiteral("start"));
    Workstation station(server.port());
    const double emptyCall = medianMs(2001, [&] { station.broker().Call(QStringLiteral("servername")); });
    std::printf("%-46s %10.3f ms\n", "empty call", emptyCall);
    benchRecordSet(station, bare, emptyCall, rows);
    const double before = residentMb(server.processId());
    benchList(station, bare, emptyCall, invoices);
    std::printf("%-46s %10.1f MB before, %.1f MB after\n", "server memory, first pages", before,
                residentMb(server.processId()));
    benchSave(station, bare);
  } catch (const DataError& error) {
    std::printf("FAILED %s\n", qPrintable(error.message()));
    return 1;
  }
  return 0;
}
