// A year's invoices come in by a file: the client without a display imports them into the demo company, rules, lookups
// and server included. Beside it the same rows put into a copy of the database by bare SQL, a transaction a document.
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "bare_database.h"

using namespace kalvor;
using namespace kalvor::bench;

namespace {

constexpr int linesPerDocument = 15;
const QString item = QStringLiteral("INVOICES_TEXT");

QStringList column(BareDatabase& db, const char* sql)
{
  QStringList values;
  sqlite3_stmt* statement = db.prepare(sql);
  while (sqlite3_step(statement) == SQLITE_ROW)
    values.append(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0))));
  sqlite3_finalize(statement);
  return values;
}

QByteArray journal(int documents, const QStringList& partners, const QStringList& items)
{
  QString text = QStringLiteral("Фактура;Дата;Клиент;Артикул;Описание;Количество;Цена\r\n");
  for (int document = 0; document < documents; ++document)
    for (int line = 0; line < linesPerDocument; ++line)
      text += QStringLiteral("I%1;%2.03.2026;%3;%4;Внесен ред;%5;%6,%7\r\n")
                  .arg(document).arg(1 + document % 28, 2, 10, QLatin1Char('0')).arg(partners[document * 7 % partners.size()],
                       items[(document * 31 + line * 17) % items.size()]).arg(1 + line).arg(1 + line * 3)
                  .arg(10 + document % 90);
  return text.toUtf8();
}

qint64 peakKb(qint64 process)
{
  QFile status(QStringLiteral("/proc/%1/status").arg(process));
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  for (const QByteArray& line : status.readAll().split('\n'))
    if (line.startsWith("VmHWM:"))
      return line.mid(6).trimmed().split(' ').first().toLongLong();
  return 0;
}

void write(const QString& file, const QByteArray& bytes)
{
  QFile out(file);
  if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
    throw DataError(out.errorString());
}

struct Imported {
  double seconds = 0;
  qint64 clientKb = 0;
};

// The transfer folder lies beside the program.
Imported import(const QString& bin, const QString& port, const QByteArray& text)
{
  const QString name = QStringLiteral("bench%1").arg(QCoreApplication::applicationPid());
  QDir folder(bin + u'/' + name);
  folder.mkpath(QStringLiteral("."));
  int check = 0;
  for (const char byte : QCryptographicHash::hash(text, QCryptographicHash::Md5))
    check += uchar(byte);
  write(folder.filePath(QStringLiteral("data.txt")), text);
  write(folder.filePath(QStringLiteral("Info_%1.xml").arg(name)),
        QStringLiteral("<Info><Table><Id>%1</Id><FileName>data.txt</FileName><Status>0</Status><CheckSum>%2</CheckSum>"
                       "<Error/></Table></Info>").arg(item).arg(check).toUtf8());
  Imported result;
  QElapsedTimer timer;
  timer.start();
  QProcess client;
  client.start(bin + QStringLiteral("/kalvor"),
               QStringLiteral("--server 127.0.0.1:%1 -u SUPERVSR -p demo -b 1 -c 1 -a xmlTransfer -f %2").arg(port, name).split(u' '));
  while (!client.waitForFinished(100) && client.state() != QProcess::NotRunning)
    result.clientKb = std::max(result.clientKb, peakKb(client.processId()));
  result.seconds = double(timer.nsecsElapsed()) / 1e9;
  folder.removeRecursively();
  return result;
}

double bareSeconds(const QString& from, const QString& copy)
{
  BareDatabase db(copy);
  db.run(QStringLiteral("ATTACH '%1' AS src").arg(from).toUtf8().constData());
  const QStringList ids = column(db, "SELECT Id FROM src.D_SaleInvoiceHeader WHERE DocumentNo LIKE 'I%' ORDER BY DocumentNo");
  sqlite3_stmt* header = db.prepare("INSERT INTO main.D_SaleInvoiceHeader SELECT * FROM src.D_SaleInvoiceHeader WHERE Id = ?");
  sqlite3_stmt* lines = db.prepare("INSERT INTO main.D_SaleInvoiceLine SELECT * FROM src.D_SaleInvoiceLine WHERE Master_Id = ?");
  QElapsedTimer timer;
  timer.start();
  for (const QString& id : ids) {
    db.run("BEGIN");
    for (sqlite3_stmt* statement : {header, lines}) {
      const QByteArray text = id.toUtf8();
      sqlite3_bind_text(statement, 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
      sqlite3_step(statement);
      sqlite3_reset(statement);
    }
    db.run("COMMIT");
  }
  const double seconds = double(timer.nsecsElapsed()) / 1e9;
  sqlite3_finalize(header);
  sqlite3_finalize(lines);
  return seconds;
}

}  // namespace

int main(int argc, char** argv)
{
  QCoreApplication application(argc, argv);
  const int documents = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 6600;
  const QString bin = QCoreApplication::applicationDirPath();
  QTemporaryDir folder;
  qputenv("KALVOR_DOCUMENTS", folder.path().toLocal8Bit());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QString file = folder.filePath(QStringLiteral("import.db"));
  const QString copy = folder.filePath(QStringLiteral("bare.db"));
  if (QProcess::execute(bin + QStringLiteral("/kalvor-server"), {QStringLiteral("init"), QStringLiteral("--db"), file}) != 0)
    return 1;
  QByteArray text;
  {
    BareDatabase db(file);
    text = journal(documents, column(db, "SELECT Code FROM N_Contragent WHERE Comp_Id = '1' AND Inactive = 0 ORDER BY Code LIMIT 300"),
                   column(db, "SELECT Code FROM N_Item WHERE Comp_Id = '1' AND Inactive = 0 ORDER BY Code LIMIT 600"));
    db.run("PRAGMA wal_checkpoint(TRUNCATE)");
  }
  QFile::copy(file, copy);
  QProcess server;
  server.start(bin + QStringLiteral("/kalvor-server"), {QStringLiteral("serve"), QStringLiteral("--db"), file,
                                                        QStringLiteral("--port"), QStringLiteral("0")});
  if (!server.waitForReadyRead(120000))
    return 1;
  const QString port = QString::fromUtf8(server.readLine()).trimmed().section(QLatin1Char(':'), -1);
  const Imported imported = import(bin, port, text);
  const qint64 serverKb = peakKb(server.processId());
  server.terminate();
  server.waitForFinished();
  int arrived = 0;
  {
    BareDatabase db(file);
    arrived = int(column(db, "SELECT Id FROM D_SaleInvoiceHeader WHERE DocumentNo LIKE 'I%'").size());
  }
  const double bare = bareSeconds(file, copy);
  std::printf("%d of %d documents of %d lines: %.0f documents a second (client start included)\n", arrived, documents,
              linesPerDocument, arrived / imported.seconds);
  line("import of all, through rules and server", imported.seconds * 1e3, "bare SQL, a transaction a document", bare * 1e3);
  std::printf("peak memory: client %lld MB, server %lld MB\n", imported.clientKb / 1024, serverKb / 1024);
  return arrived == documents ? 0 : 1;
}
