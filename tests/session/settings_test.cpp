#include <QDir>

#include "scratch_documents.h"
#include "session/error_log.h"
#include "session/local_data.h"
#include "session/local_settings_file.h"
#include "session/settings_document.h"
#include "several_tests.h"

using namespace kalvor;

class SettingsTest : public QObject {
  Q_OBJECT
 private slots:
  void sectionsAreReadWhole_data()
  {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QStringList>("lines");
    const QByteArray file =
        "; comment\r\n[Server]\r\nServerPort = 2030 \r\n;ServerAddress=hidden\r\n\r\nServerAddress=10.0.0.1\r\n"
        "[Devices]\r\nprn=\\\\host\\a=b\r\nno sign\r\n";
    QTest::newRow("trimmed") << file << "Server" << QStringList{"ServerPort=2030", "ServerAddress=10.0.0.1"};
    QTest::newRow("any case, = in value") << file << "devices" << QStringList{"prn=\\\\host\\a=b"};
    QTest::newRow("missing section") << file << "User" << QStringList();
    QTest::newRow("code page") << QByteArray("[User]\nUser=\xc8\xe2\xe0\xed\n") << "User" << QStringList{"User=Иван"};
    QTest::newRow("mark") << QByteArray("\xef\xbb\xbf[User]\nUser=\xd0\x98\n") << "User" << QStringList{"User=И"};
    QTest::newRow("no file") << QByteArray() << "User" << QStringList();
  }
  void sectionsAreReadWhole()
  {
    QFETCH(QByteArray, file);
    QFETCH(QString, section);
    testing::ScratchDocuments documents;
    QDir().mkpath(documents.path("Kalvor"));
    if (!file.isEmpty())
      documents.write("Kalvor/client.ini", file);
    KalvorClientINIFileName = "client.ini";
    QStringList lines{"before=1"};
    QVERIFY(GetSectionFromIni(section, lines));
    QTEST(lines, "lines");
  }

  void writingKeepsTheRest()
  {
    testing::ScratchDocuments documents;
    QDir().mkpath(documents.path("Kalvor"));
    documents.write("Kalvor/client.ini", "; head\n[A]\nx=1\nKeep=2\ny=3\n\n[B]\nz=1\n");
    KalvorClientINIFileName = "client.ini";
    QVERIFY(SaveSectionToIni("a", {"Y=30", "x=10\n[B]", "новo=я", "skipped"}));
    QVERIFY(SaveSectionToIni("C", {"first="}));
    QCOMPARE(documents.read("Kalvor/client.ini"),
             QByteArray("; head\n[A]\nKeep=2\nY=30\nx=10 [B]\nновo=я\n\n[B]\nz=1\n\n[C]\nfirst=\n"));
    QStringList lines;
    QVERIFY(GetSectionFromIni(documents.path("Kalvor/client.ini"), "C", lines, true));
    QCOMPARE(lines, QStringList{"first="});
  }

  void failuresAreLoggedAndLeaveTheList()
  {
    testing::ScratchDocuments documents;
    QDir().mkpath(documents.path("Kalvor/client.ini"));
    KalvorClientINIFileName = "client.ini";
    InitLog();
    QStringList lines{"before=1"};
    QVERIFY(!GetSectionFromIni("User", lines));
    QVERIFY(!SaveSectionToIni("User", {"a=1"}));
    QCOMPARE(lines, QStringList{"before=1"});
    QStringList log;
    LoadErrorLog(log);
    CloseLog();
    QCOMPARE(log.filter("[Процедура]"),
             (QStringList{"[Процедура]: GetSectionFromIni", "[Процедура]: SaveSectionToIni"}));
  }

  void groupsOfTheSettingsDocument()
  {
    QDomDocument document;
    QStringList lines{"before=1"};
    QVERIFY(!GetNodeFromXml(document, "Form_Id120", lines));
    QCOMPARE(lines, QStringList());
    QVERIFY(!SaveNodeToXml(document, "Form_Id120", {}, true));
    QVERIFY(document.documentElement().isNull());
    QVERIFY(SaveNodeToXml(document, "Form_Id120", {"Filter=Name,LIKE,аб%,&", "a key=1", "1x=1", "Symbol= ", "E="}, false));
    QVERIFY(SaveNodeToXml(document, "ExportOptions", {"Drob=2"}, false));
    QDomDocument read;
    QVERIFY(loadSettingsDocument(read, document.toString()));
    QCOMPARE(read.documentElement().tagName(), QString("Root"));
    QVERIFY(GetNodeFromXml(read, "Form_Id120", lines));
    QCOMPARE(lines, (QStringList{"Filter=Name,LIKE,аб%,&", "Symbol= ", "E="}));
    QVERIFY(SaveNodeToXml(read, "Form_Id120", {"E=<1>&\x01", "New=a\r\nb"}, false));
    QDomDocument again;
    QVERIFY(loadSettingsDocument(again, read.toString(-1)));
    GetNodeFromXml(again, "Form_Id120", lines);
    QCOMPARE(lines, (QStringList{"Filter=Name,LIKE,аб%,&", "Symbol= ", "E=<1>&", "New=a\r\nb"}));
    QVERIFY(SaveNodeToXml(again, "Form_Id120", {"FormWidth=10"}, true));
    GetNodeFromXml(again, "Form_Id120", lines);
    QCOMPARE(lines, QStringList{"FormWidth=10"});
    GetNodeFromXml(again, "ExportOptions", lines);
    QCOMPARE(lines, QStringList{"Drob=2"});
  }

  void badDocumentsAreRefused_data()
  {
    QTest::addColumn<QString>("text");
    QTest::newRow("cut") << "<Root><A>";
    QTest::newRow("no xml") << "FormWidth=10";
    QTest::newRow("entities") << "<!DOCTYPE Root [<!ENTITY a \"aaaa\">]><Root>&a;</Root>";
  }
  void badDocumentsAreRefused()
  {
    QFETCH(QString, text);
    QDomDocument document;
    SaveNodeToXml(document, "A", {"b=1"}, false);
    QVERIFY(!loadSettingsDocument(document, text));
    QStringList lines;
    QVERIFY(GetNodeFromXml(document, "A", lines));
    QVERIFY(loadSettingsDocument(document, " "));
    QVERIFY(document.isNull());
  }
};

static const testing::RegisterTest<SettingsTest> registerSettingsTest;
#include "settings_test.moc"
