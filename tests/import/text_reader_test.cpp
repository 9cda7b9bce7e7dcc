#include "import/text_reader.h"

#include "import/import_files.h"
#include "import/messages.h"
#include "platform/text_encoding.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/import_log.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::AnsweringServer;
using kalvor::testing::documentsOf;

namespace {

const QString twoLevels = QStringLiteral("1=1|1|No");
const QString lineFields = QStringLiteral("2=1|0|Item");
const QString semicolons = QStringLiteral("TXTFILE_SEP=SemiColon##");
const QString itemLookup = QStringLiteral("2=2|0|||1|ONE;ID|12|N_Item|N_Item.Code#=#8#2#;Comp#=#3#@5#");
const QString lookupLinks = QStringLiteral("[LINK_FIELDS_DESCR]ONE=Id##ID=Item_Id[##LINK_FIELDS_DESCR]");

}  // namespace

class TextReaderTest : public QObject {
  Q_OBJECT

  testing::ImportFolder folder_;

 private slots:
  void columns_data()
  {
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QStringList>("columns");  // at positions 0 to 5
    QTest::newRow("semicolon") << "SEMICOLON" << QByteArray("A;B;;D") << QStringList{"", "A", "B", "", "D", ""};
    QTest::newRow("tab") << "tab" << QByteArray("A\t B \t") << QStringList{"", "A", " B ", "", "", ""};
    QTest::newRow("comma, no quoting") << "COMMA" << QByteArray("\"A,B\"") << QStringList{"", "\"A", "B\"", "", "", ""};
    QTest::newRow("none") << "PIPE" << QByteArray("A;B|C") << QStringList{"", "A;B|C", "", "", "", ""};
    QTest::newRow("fixed") << "FIXEDLEN" << QByteArray("ABCDEFGHIJKL")
                           << QStringList{"", "ABCDEFGHIJ", "EFGH", "KL", "", "ABC"};
    QTest::newRow("fixed, short line") << "FIXEDLEN" << QByteArray("ABCDEF") << QStringList{"", "ABCDEF", "EF", "", "", "ABC"};
    QTest::newRow("1251") << "SEMICOLON" << toWindows1251(u"Хляб;Ю") << QStringList{"", "Хляб", "Ю", "", "", ""};
    QTest::newRow("zero bytes") << "SEMICOLON" << QByteArray("A\0B;C", 5)
                                << QStringList{"", QString::fromLatin1("A\0B", 3), "C", "", "", ""};
  }
  void columns()
  {
    QFETCH(QString, separator);
    QFETCH(QByteArray, row);
    const TImportFilter filter = testing::importFilter("TXTFILE_SEP=" + separator, "1=1|0|F|1-11##2=1|0|F|5-9##9=3|0",
                                                       "3=1|0|F|11-20##4=1|0|F|7-3##5=1|0|F|-3##2=1|0|F|1-2");
    TImportTxt reader(folder_.write("columns.txt", "x"), filter, {});
    QStringList values;
    for (int position = 0; position <= 5; ++position)
      values.append(reader.GetValueAtPos(row, position));
    QTEST(values, "columns");
    reader.SetDelimiter(dtChar, "BC");
    QCOMPARE(reader.GetValueAtPos("ABCD", 2), "D");
  }

  void encodings_data()
  {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("name");
    QTest::newRow("1251") << toWindows1251(u"1Хляб 2\n") << "Хляб";
    QTest::newRow("utf-8") << QByteArray("1Хляб 2\r\n") << "Хляб";
    QTest::newRow("utf-8 with a mark") << QByteArray("\xEF\xBB\xBF") + "1Хляб 2" << "Хляб";
    QTest::newRow("a mark and ascii") << QByteArray("\xEF\xBB\xBF") + "1abcd 2" << "abcd";
    QTest::newRow("an emoji is a character") << QByteArray("1a\xF0\x9F\x98\x80" "bc2") << QString::fromUtf8("a\xF0\x9F\x98\x80" "bc");
    QTest::newRow("overlong is not utf-8") << QByteArray("1a\xC0\x80" "b2") << "aАЂb";
    QTest::newRow("utf-8 cut at its end") << QByteArray("1\xC3\xE0\xE1\xE2 \xD0") << "Габв";
  }
  void encodings()
  {
    QFETCH(QByteArray, file);
    QFETCH(QString, name);
    const TImportFilter filter = testing::importFilter("TXTFILE_SEP=FIXEDLEN", "1=1|0|N|1-2##2=1|0|Name|2-6");
    TImportTxt reader(folder_.write("encoding.txt", file), filter, {});
    const QStringList lines = documentsOf(reader);
    QCOMPARE(lines.size(), 1);
    QCOMPARE(lines[0].trimmed(), "N=1; Name=" + name);
  }

  void documents_data()
  {
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("master");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("lines");
    const QByteArray five = "X;1\nX;2\nY;3\nY;4\nY;5\n";
    QTest::newRow("breaks") << "NEW_DOCSEP=1" << twoLevels << lineFields << five << 2
                            << QStringList{"No=X*", "- Item=1", "- Item=2", "No=Y*", "- Item=3", "- Item=4", "- Item=5"};
    QTest::newRow("no breaks") << "" << twoLevels << lineFields << QByteArray("X;1\nY;2") << 0
                               << QStringList{"No=X*", "- Item=1", "- Item=2"};
    QTest::newRow("masters only") << "NEW_DOCSEP=1" << twoLevels << "" << five.left(12) << 2
                                  << QStringList{"No=X*", "No=X*", "No=Y*"};
    QTest::newRow("first row") << "FIRST_ROW=3##NEW_DOCSEP=1" << twoLevels << lineFields << five << 1
                               << QStringList{"No=Y*", "- Item=3", "- Item=4", "- Item=5"};
    QTest::newRow("first row beyond the file") << "FIRST_ROW=30" << twoLevels << lineFields << five << 0 << QStringList();
    QTest::newRow("two break columns") << "NEW_DOCSEP=1;2;" << twoLevels << "3=1|0|Item"
                                       << QByteArray("X;a;1\nX;a;2\nX;b;3\nZ;b;4\n") << 3
                                       << QStringList{"No=X*", "- Item=1", "- Item=2", "No=X*", "- Item=3", "No=Z*", "- Item=4"};
    QTest::newRow("an empty break starts a document behind it")
        << "NEW_DOCSEP=1" << twoLevels << lineFields << QByteArray("X;1\n;2\nX;3\nX;4\n") << 2
        << QStringList{"No=X*", "- Item=1", "- Item=2", "No=X*", "- Item=3", "- Item=4"};
    QTest::newRow("empty lines before and behind") << "NEW_DOCSEP=1" << twoLevels << "2=1|0|Item||0"
                                                   << QByteArray("\r\n\r\nX;1\r\nX;\r\n\r\n \r\n\t\r\n") << 5
                                                   << QStringList{"No=X*", "- Item=1", "- Item=0"};
    QTest::newRow("nothing but blanks") << "" << twoLevels << lineFields << QByteArray(" \r\n\t\n") << 0 << QStringList();
    QTest::newRow("empty file") << "NEW_DOCSEP=1" << twoLevels << lineFields << QByteArray() << 0 << QStringList();
    QTest::newRow("defaults") << "" << "1=1|0|A##2=1|1|B||0##3=1|0|C##4=3|0|D||9##5=1|0|E||x" << ""
                              << QByteArray("1;;;4;5\n") << 0 << QStringList{"A=1; B=0*; E=5"};
    QTest::newRow("lines without cells are no details") << "NEW_DOCSEP=1" << twoLevels << lineFields
                                                        << QByteArray("X;1\nX;\nX;3\n") << 1
                                                        << QStringList{"No=X*", "- Item=1", "- Item=3"};
    QTest::newRow("nothing collected ends the document") << "NEW_DOCSEP=1" << twoLevels << lineFields
                                                         << QByteArray("X;\nX;2\nX;3\n") << 1
                                                         << QStringList{"No=X*", "No=X*", "- Item=2", "- Item=3"};
  }
  void documents()
  {
    QFETCH(QString, options);
    QFETCH(QString, master);
    QFETCH(QString, detail);
    QFETCH(QByteArray, file);
    const TImportFilter filter = testing::importFilter(semicolons + options, master, detail);
    TImportTxt reader(folder_.write("documents.txt", file), filter, {});
    QTEST(reader.GetRecordCount(), "count");
    QTEST(documentsOf(reader), "lines");
    TImportLine line{{"Kept", 1, false}};
    TImportSet set;
    QString error = "kept";
    QCOMPARE(reader.ReadRecord(line, set, error), -1);
    QCOMPARE(line.size(), 1);
    QCOMPARE(error, "kept");
  }

  void rowNumbers()
  {
    const testing::ScratchDocuments documents;
    const testing::FixedClock clock(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    ImportInitLog();
    AnsweringServer server;
    const TImportFilter filter = testing::importFilter(semicolons + "FIRST_ROW=2##NEW_DOCSEP=1", twoLevels,
                                                       lineFields + "##" + itemLookup, lookupLinks);
    TImportTxt reader(folder_.write("rows.txt", "No;Item\n\nX;a\nX;b\nY;c\n"), filter, server.services());
    QCOMPARE(reader.rowCounter(), 2);
    const QStringList expected{"! Ред No: 5\r\nГрешка при извличане на данни.", "! Ред No: 5\r\nГрешка при извличане на данни."};
    QCOMPARE(documentsOf(reader), expected);
    // The first line fails and the second is only passed over: the row of the first, not of the last read.
    QCOMPARE(server.messages.size(), 2);
    QVERIFY(server.messages[0].startsWith(_err_RecNotFound + "\r\nРед No: 3\r\nФилтър: Code=a\r\nComp=5\r\n"));
    QVERIFY(server.messages[1].contains("Ред No: 5\r\nФилтър: Code=c"));
    ImportCloseLog();
    const QString log = QString::fromUtf8(documents.read("Kalvor/ImportLog/20260118.LOG"));
    QCOMPARE(log.count("[09:05:07 Процедура: TImportTxt.ReadRecord]\r\n[Грешка]: Грешка при извличане на данни.\r\n\r\n"), 2);
  }

  void skippedRows()
  {
    AnsweringServer server;
    const TImportFilter filter = testing::importFilter(semicolons + "SKIP_INVALID_ROWS=1", "1=1|1|No##" + itemLookup,
                                                       "1=1|0|No", lookupLinks);
    TImportTxt reader(folder_.write("skipped.txt", "X;a\n"), filter, server.services());
    QCOMPARE(documentsOf(reader), (QStringList{"", "- No=X"}));
    QCOMPARE(server.messages.size(), 1);
  }

  void valuesThatLookLikeDescriptions()
  {
    AnsweringServer server;
    server.answers[12] = {1, 7};
    const TImportFilter filter = testing::importFilter("TXTFILE_SEP=TAB", itemLookup, {}, lookupLinks);
    TImportTxt reader(folder_.write("signs.txt", "X\tC#;|@Id#=#3#1##\n"), filter, server.services());
    QCOMPARE(documentsOf(reader), QStringList{"Item_Id=7"});
    QCOMPARE(server.requests[0].filter[0].value, Variant("C#;|@Id#=#3#1##"));
    QCOMPARE(server.requests[0].filter.size(), 2);
  }

  void fallbackTakesItsValueFromTheRow_data()
  {
    QTest::addColumn<QString>("entry");
    QTest::newRow("numbered") << "1=2|1|||1|ONE;ID|13|N_Item|Barcode#=#8#1#";
    QTest::newRow("unnumbered") << "2|1|||1|ONE;ID|13|N_Item|Barcode#=#8#1#";
  }
  void fallbackTakesItsValueFromTheRow()
  {
    QFETCH(QString, entry);
    AnsweringServer server;
    server.answers[13] = {1, 9};
    const TImportFilter filter = testing::importFilter(semicolons, itemLookup, {},
                                                       lookupLinks + "[DEFAULT_SELECTOR]" + entry + "[##DEFAULT_SELECTOR]");
    TImportTxt reader(folder_.write("fallback.txt", "X;a\n"), filter, server.services());
    QCOMPARE(documentsOf(reader), QStringList{"Item_Id=9*"});
    QCOMPARE(server.requests[1].filter, (FilterArray{{"Barcode", "=", "X", "", {}}}));
  }

  void bigLines()
  {
    const TImportFilter filter = testing::importFilter(semicolons, "1=1|0|No##3=1|0|End");
    QByteArray file = "A;" + QByteArray(4 << 20, 'x') + ";z\n";
    file += QByteArray(LineReader::longestLine + (1 << 20), '\0') + "\nB;;z\n" + QByteArray(1 << 20, ' ');
    TImportTxt reader(folder_.write("big.txt", file), filter, {});
    QCOMPARE(documentsOf(reader), (QStringList{"No=A; End=z", "! Ред No: 2\r\n" + _err_LineTooLong, "No=B; End=z"}));
  }

  void filesThatDoNotOpen()
  {
    const TImportFilter filter = testing::importFilter(semicolons, twoLevels);
    for (const char* name : {"/nonexistent/file.txt", "/dev/zero", "/"})
      QVERIFY_EXCEPTION_THROWN(TImportTxt(name, filter, {}), TImportException);
  }
};

static const testing::RegisterTest<TextReaderTest> registered;
#include "text_reader_test.moc"
