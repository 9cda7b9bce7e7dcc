#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include "../forms/sample_forms.h"
#include "../several_tests.h"
#include "import/windows/xml_transfer.h"
#include "platform/system.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

const QString contragentRows = QStringLiteral(
    "[OPTIONS]TXTFILE_SEP=SEMICOLON##IMPORT_ACTION=0[##OPTIONS][CDSMASTER]1=1|1|Code##2=1|0|Name##"
    "90=1|0|N_VATBusPostGroup_Code||BG##91=1|0|N_GenBusPostGroup_Code||DOMESTIC[##CDSMASTER]");

// A folder of data files beside the program; gone with its object.
class TransferFolder {
 public:
  TransferFolder() : name_(QStringLiteral("transfer%1").arg(QCoreApplication::applicationPid()))
  {
    QDir(hostProgramFolder()).mkpath(name_);
  }
  ~TransferFolder() { QDir(path()).removeRecursively(); }
  QString path() const { return hostProgramFolder() + name_; }
  QString info() const { return path() + QStringLiteral("/Info_") + name_ + QStringLiteral(".xml"); }
  QString put(const QString& file, const QString& text) const
  {
    QFile data(path() + u'/' + file);
    if (data.open(QIODevice::WriteOnly))
      data.write(text.toUtf8());
    return file;
  }
  static qint32 checkSum(const QString& text)
  {
    qint32 sum = 0;
    for (const char byte : QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5))
      sum += uchar(byte);
    return sum;
  }
  QList<TTransferRecord> outcome() const
  {
    TTransferInfo info;
    return FillTranferArrayFromFile(this->info(), info) ? info.records() : QList<TTransferRecord>();
  }

 private:
  QString name_;
};

}  // namespace

class XmlTransferTest : public QObject {
  Q_OBJECT

 private slots:
  void everyItemHasItsOutcome()
  {
    Desk desk;
    const auto writer = demoServer()->core().openWriter();
    writer->execute(QStringLiteral("DELETE FROM S_TransferList WHERE Id IN ('GOOD', 'BARE')"));
    for (const auto& [id, schema] : {std::pair("GOOD", "<none/>"), std::pair("BARE", " ")})
      writer->execute(QStringLiteral("INSERT INTO S_TransferList (Id, Form_Id, Dataport, DPSchema) VALUES (?, 141, ?, ?)"),
                      {QString::fromLatin1(id), contragentRows, QString::fromLatin1(schema)});
    writer->execute(QStringLiteral("DELETE FROM N_Contragent WHERE Code LIKE 'TRF%'"));
    const TransferFolder folder;
    const QString rows = QStringLiteral("TRF1;Първи\r\nTRF2;Втори\r\n");
    folder.put(QStringLiteral("rows.txt"), rows);
    TTransferInfo info;
    for (const char* id : {"NOBODY", "BARE", "GOOD"})
      info.Add({QString::fromLatin1(id), QStringLiteral("rows.txt"), 0, TransferFolder::checkSum(rows), 0, QString()});
    QCOMPARE(CreateTransferInfoFile(info, folder.path(), QFileInfo(folder.info()).fileName()), 0);
    importXmlTransfer(folder.info());
    const QList<TTransferRecord> outcome = folder.outcome();
    QCOMPARE(outcome.size(), 3);
    QCOMPARE(outcome[0].Error, QStringLiteral("No found Form_Id, Dataport, DPSchema"));
    QCOMPARE(outcome[1].Error, QStringLiteral(" All DPSchema is null"));
    QCOMPARE(outcome[2].Error, QString());
    QCOMPARE(int(outcome[2].Status), 1);
    QCOMPARE(stored(*writer), 2);
    QVERIFY(desk.prompt.messages.isEmpty());
    QCOMPARE(writer->value(QStringLiteral("SELECT COUNT(*) FROM S_TransferLog WHERE FileName = ?"),
                           {QFileInfo(folder.info()).fileName()}).toInt(), 1);
  }

  void whatWasTamperedWithIsNotImported_data()
  {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("added");
    QTest::addColumn<QString>("error");
    QTest::newRow("the checksum does not fit") << "rows.txt" << 1 << "Invalid check sum for items : rows.txt";
    QTest::newRow("the name leads out of the folder") << "../kalvor.txt" << 0 << "Invalid check sum for items : Error during validating check sum : ";
  }
  void whatWasTamperedWithIsNotImported()
  {
    QFETCH(QString, file);
    QFETCH(int, added);
    QFETCH(QString, error);
    Desk desk;
    const auto writer = demoServer()->core().openWriter();
    writer->execute(QStringLiteral("DELETE FROM N_Contragent WHERE Code LIKE 'TRF%'"));
    const TransferFolder folder;
    const QString rows = QStringLiteral("TRF1;Първи\r\n");
    folder.put(QStringLiteral("rows.txt"), rows);
    TTransferInfo info;
    info.Add({QStringLiteral("INVOICES_TEXT"), file, 0, TransferFolder::checkSum(rows) + added, 0, QString()});
    CreateTransferInfoFile(info, folder.path(), QFileInfo(folder.info()).fileName());
    importXmlTransfer(folder.info());
    const QList<TTransferRecord> outcome = folder.outcome();
    QCOMPARE(outcome.size(), 1);
    QCOMPARE(int(outcome[0].Status), -1);
    QVERIFY2(outcome[0].Error.startsWith(error), qPrintable(outcome[0].Error));
    QCOMPARE(stored(*writer), 0);
  }

 private:
  static int stored(server::Connection& connection)
  {
    return connection.value(QStringLiteral("SELECT COUNT(*) FROM N_Contragent WHERE Code LIKE 'TRF%'")).toInt();
  }
};

static const RegisterTest<XmlTransferTest> registerXmlTransferTest;
#include "xml_transfer_test.moc"
