#include <QDir>

#include "common/message_digest.h"
#include "common/transfer_info.h"
#include "data/data_error.h"
#include "scratch_documents.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

TTransferRecord recordOf(const QString& id, qint32 sortKey = 0)
{
  TTransferRecord record;
  record.Id = id;
  record.SortKey = sortKey;
  return record;
}

TTransferRecord dataFile(const QString& name, qint32 checkSum)
{
  TTransferRecord record;
  record.FileName = name;
  record.CheckSum = checkSum;
  return record;
}

QString ids(const TTransferInfo& info)
{
  QStringList all;
  for (const TTransferRecord& record : info.records())
    all.append(record.Id);
  return all.join(',');
}

constexpr int sumOfNothing = 2121;  // of the bytes of d41d8cd98f00b204e9800998ecf8427e
constexpr int sumOfAbc = 1960;      // of the bytes of 900150983cd24fb0d6963f7d28e17f72

}  // namespace

class TransferInfoTest : public QObject {
  Q_OBJECT

 private slots:
  void init()
  {
    documents_ = std::make_unique<testing::ScratchDocuments>();
    InitLog();
  }
  void cleanup()
  {
    CloseLog();
    documents_.reset();
  }

  void digests_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("digest");
    QTest::newRow("empty") << "" << "d41d8cd98f00b204e9800998ecf8427e";
    QTest::newRow("abc") << "abc" << "900150983cd24fb0d6963f7d28e17f72";
    QTest::newRow("alphabet") << "abcdefghijklmnopqrstuvwxyz" << "c3fcd3d76192e4007dfb496cca67e13b";
    QTest::newRow("code page") << "тайна" << "eaf77ca725d0312cbd00b1be8b0171ef";
  }
  void digests()
  {
    QFETCH(QString, text);
    const QByteArray digest = MD5String(text);
    QCOMPARE(digest.size(), 16);
    QTEST(MD5Print(digest), "digest");
  }

  void digestOfAFile()
  {
    documents_->write("abc", "abc");
    QCOMPARE(MD5File(documents_->path("abc")), MD5String("abc"));
    QVERIFY_EXCEPTION_THROWN(MD5File(documents_->path("none")), DataError);
    QVERIFY_EXCEPTION_THROWN(MD5File(documents_->path()), DataError);
  }

  void orderOfRecords()
  {
    TTransferInfo info;
    QCOMPARE(info.InsertSorted(recordOf("c", 3)), -1);
    QCOMPARE(info.InsertSorted(recordOf("a", 1)), 0);
    QCOMPARE(info.InsertSorted(recordOf("a2", 1)), 1);
    QCOMPARE(info.InsertSorted(recordOf("b", 2)), 2);
    QCOMPARE(info.InsertSorted(recordOf("c2", 3)), -1);
    QCOMPARE(ids(info), QString("a,a2,b,c,c2"));
    info.Insert(recordOf("x"), info.Count());
    info.Insert(recordOf("x"), -1);
    QCOMPARE(info.Count(), 5);
    info.Insert(recordOf("x"), 4);
    info.Delete(0);
    info.Delete(9);
    QCOMPARE(ids(info), QString("a2,b,c,x,c2"));
    QCOMPARE(info.IndexOf("x"), 3);
    QCOMPARE(info.IndexOf("X"), -1);
    info.FileName = "here";
    TTransferInfo copy(info);
    QCOMPARE(ids(copy), ids(info));
    QVERIFY(copy.FileName.isEmpty());
    copy.SetInvalidCheckSum("a,b");
    QCOMPARE(copy.Count(), 1);
    QCOMPARE(int(copy[0].Status), -1);
    QCOMPARE(copy[0].Error, QString("Invalid check sum for items : a,b"));
    QVERIFY(copy[0].Id.isEmpty() && copy[0].FileName.isEmpty() && copy[0].CheckSum == 0);
    info.Clear();
    QCOMPARE(info.Count(), 0);
  }

  void writtenAndReadBack()
  {
    TTransferInfo info;
    info.Add({"1", "папка\\a & b.xml", 1, 4080, 7, "ред 1\r\nред 2 <x> \"'"});
    info.Add({"", " ", -1, -5, 0, QString("\x01\x7f") + QChar(0xD800) + "😀\r"});
    for (const QString& folder : {documents_->path(), documents_->path() + '\\', documents_->path() + '/'}) {
      QCOMPARE(CreateTransferInfoFile(info, folder, "Info_x.xml"), 0);
      TTransferInfo back;
      QVERIFY(FillTranferArrayFromFile(documents_->path("Info_x.xml"), back));
      QCOMPARE(back.Count(), 2);
      TTransferRecord first = info[0];
      first.SortKey = 0;
      QCOMPARE(back[0], first);
      TTransferRecord second = info[1];
      second.Error = QString("\uFFFD\x7f\uFFFD😀\r");
      QCOMPARE(back[1], second);
      QCOMPARE(QDir(documents_->path()).entryList(QDir::Files), QStringList{"Info_x.xml"});
    }
    const QByteArray written = documents_->read("Info_x.xml");
    QVERIFY(written.contains("<Info><Table><Id>1</Id><FileName>"));
    QVERIFY(written.contains("<Status>-1</Status><CheckSum>-5</CheckSum><Error>"));
  }

  void notWritten()
  {
    QCOMPARE(CreateTransferInfoFile({}, documents_->path("none"), "x.xml"), -1);
    QVERIFY(logged("CreateTransferInfoFile"));
  }

  void documents_data()
  {
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QString>("outcome");  // "!" raised, "-" false, then the identifiers
    const auto table = [](const char* id, const char* status) {
      return QByteArray("<Table><Id>") + id + "</Id><FileName>f</FileName><Status>" + status +
             "</Status><CheckSum>0</CheckSum><Error/></Table>";
    };
    QTest::newRow("records") << "<Info>" + table("1", "0") + table("2", " 1 ") + "</Info>" << "1,2";
    QTest::newRow("any names") << "<r>" + table("1", "0").replace("Table", "x") + "</r>" << "1";
    QTest::newRow("no records") << QByteArray("<?xml version='1.0'?><Info/>") << "";
    QTest::newRow("nothing") << QByteArray() << "-";
    QTest::newRow("no root") << QByteArray("<?xml version='1.0'?><!-- x -->") << "-";
    QTest::newRow("no number") << "<Info>" + table("1", "0") + table("2", "x") + table("3", "0") + "</Info>" << "-1";
    QTest::newRow("status too large") << "<Info>" + table("1", "0") + table("2", "128") + "</Info>" << "-1";
    QTest::newRow("cut") << "<Info>" + table("1", "0") + "<Table>" << "!";
    QTest::newRow("no XML") << QByteArray("Info") << "!";
    QTest::newRow("document type") << "<!DOCTYPE Info><Info>" + table("1", "0") + "</Info>" << "!";
    QTest::newRow("entities") << QByteArray("<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;\">]><Info>"
                                            "<Table><Id>&b;</Id></Table></Info>") << "!";
    QTest::newRow("depth") << "<Info><Table><Id>" + QByteArray("<a>").repeated(200000) << "!";
  }
  void documents()
  {
    QFETCH(QByteArray, xml);
    QFETCH(QString, outcome);
    documents_->write("info.xml", xml);
    TTransferInfo info;
    QString found;
    try {
      const bool read = FillTranferArrayFromFile(documents_->path("info.xml"), info);
      found = (read ? "" : "-") + ids(info);
    } catch (const DataError&) {
      found = "!" + ids(info);
    }
    QCOMPARE(found, outcome);
    QCOMPARE(logged("FillTranferArrayFromFile"), outcome.startsWith("-") && outcome != "-");
  }

  void missingDocument()
  {
    TTransferInfo info;
    QVERIFY_EXCEPTION_THROWN(FillTranferArrayFromFile(documents_->path("none.xml"), info), DataError);
  }

  void validation_data()
  {
    using Records = QList<TTransferRecord>;
    QTest::addColumn<Records>("records");
    QTest::addColumn<QString>("result");  // ends with "*": so it begins
    const QString failed = "Error during validating check sum : ";
    const QString outside = failed + "Файлът %1 е извън папката на трансфера.";
    QTest::newRow("no records") << Records{} << "";
    QTest::newRow("all fit") << Records{dataFile("in/abc", sumOfAbc), dataFile("empty", sumOfNothing)} << "";
    QTest::newRow("other separator") << Records{dataFile("in\\abc", sumOfAbc)} << "";
    QTest::newRow("tampered") << Records{dataFile("in/abc", sumOfAbc + 1), dataFile("empty", sumOfNothing),
                                         dataFile("empty", sumOfAbc)} << "in/abc,empty";
    QTest::newRow("no checksum") << Records{dataFile("in/abc", 0)} << "in/abc,in/abc";
    QTest::newRow("missing") << Records{dataFile("empty", 1), dataFile("none", 5)} << failed + "*";
    QTest::newRow("folder") << Records{dataFile("in", 5)} << failed + "*";
    QTest::newRow("no name") << Records{dataFile("", 5)} << failed + "*";
    for (const char* name : {"../outside", "..\\outside", "in/../../outside", "/etc/passwd", "\\etc\\passwd",
                             "C:\\x", "..", "link", "linked/outside"})
      QTest::newRow(name) << Records{dataFile(name, 5)} << outside.arg(name);
    QTest::newRow("back again") << Records{dataFile("in/../empty", sumOfNothing)} << "";
  }
  void validation()
  {
    QFETCH(QList<TTransferRecord>, records);
    QFETCH(QString, result);
    QVERIFY(QDir(documents_->path()).mkpath("transfer/in"));
    documents_->write("transfer/in/abc", "abc");
    documents_->write("transfer/empty", "");
    documents_->write("outside", "abc");
    QVERIFY(QFile::link(documents_->path("outside"), documents_->path("transfer/link")));
    QVERIFY(QFile::link(documents_->path(), documents_->path("transfer/linked")));
    TTransferInfo info;
    info.FileName = documents_->path("transfer/Info_x.xml");
    for (const TTransferRecord& record : records)
      info.Add(record);
    QString found = "before";
    info.Validate(found);
    if (result.endsWith('*'))
      QVERIFY2(found.startsWith(result.chopped(1)) && found.size() > result.size(), qPrintable(found));
    else
      QCOMPARE(found, result);
    QCOMPARE(logged("TTransferInfo.InsertSorted"), result.startsWith("Error"));
  }

 private:
  static bool logged(const QString& procedure)
  {
    QStringList lines;
    LoadErrorLog(lines);
    return lines.contains("[Процедура]: " + procedure);
  }

  std::unique_ptr<testing::ScratchDocuments> documents_;
};

static const testing::RegisterTest<TransferInfoTest> registerTransferInfoTest;
#include "transfer_info_test.moc"
