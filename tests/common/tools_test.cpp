#include "common/dataset_search.h"
#include "common/system_tools.h"
#include "common/text_tools.h"
#include "records.h"
#include "scratch_documents.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;

class ToolsTest : public QObject {
  Q_OBJECT
 private slots:
  void texts()
  {
    QCOMPARE(AddMessageToString("", "b"), QString("b"));
    QCOMPARE(AddMessageToString("a", "b"), QString("a\r\n\r\nb"));
    QString text = "xaabbyab";
    RemoveAllSubString(text, "ab");
    QCOMPARE(text, QString("xy"));
    RemoveAllSubString(text, "");
    QCOMPARE(text, QString("xy"));
    QCOMPARE(EndWithDirSlash("", '/'), QString("/"));
    QCOMPARE(EndWithDirSlash("a/", '/'), QString("a/"));
  }

  void versions_data()
  {
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("order");
    QTest::newRow("missing parts") << "1.2" << "1.2.0.0" << 4 << 0;
    QTest::newRow("first part") << "2.0" << "1.9" << 1 << 1;
    QTest::newRow("as numbers") << "1.10" << "1.9" << 2 << 1;
    QTest::newRow("too deep to see") << "1.10" << "1.9" << 1 << 0;
    QTest::newRow("no number") << "1.x.3" << "1.0.5" << 4 << -2;
    QTest::newRow("fifth part") << "1.2.3.4.5" << "1.2.3.4.9" << 9 << 0;
  }
  void versions()
  {
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, depth);
    QTEST(CompareVersions(a, b, depth), "order");
  }

  void hexadecimals()
  {
    QCOMPARE(HexToInt("ff"), 255);
    QCOMPARE(HexToInt(""), 0);
    QCOMPARE(HexToInt("FFFFFFFF"), -1);
    QCOMPARE(HexToInt("100000001"), 1);
    for (const char* text : {"0x10", "g", " 1", "-1"})
      QVERIFY_EXCEPTION_THROWN(HexToInt(text), DataError);
  }

  void files()
  {
    testing::ScratchDocuments documents;
    documents.write("a.txt", "\xc0\r\n");
    documents.write("empty.txt", "");
    QVERIFY(CheckFileExists(documents.path("a.txt")));
    QVERIFY(CheckFileExists(documents.path()));
    QVERIFY(!CheckFileExists(documents.path("none")));
    QVERIFY(!CheckFileExists(""));
    QString text = "before";
    QVERIFY(!GetTextFromFile(documents.path("empty.txt"), text));
    QVERIFY(!GetTextFromFile(documents.path("none"), text));
    QCOMPARE(text, QString("before"));
    QVERIFY(GetTextFromFile(documents.path("a.txt"), text));
    QCOMPARE(text, QString("А\r\n"));
    QVERIFY(!GetWindowsVersion().isEmpty());
    QVERIFY(GetCurrentProccessMemoryUsage() > 0);
  }

  void recordsByKey()
  {
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef("A", DataType::Integer), fieldDef("B")});
    dataSet.AppendRecord({2, "x"});
    dataSet.AppendRecord({1, "y"});
    dataSet.AppendRecord({1, "x"});
    dataSet.SetIndexFieldNames("B");
    QVERIFY(LocateCDS(dataSet, "A;B", VariantArray{1, "y"}));
    QCOMPARE(dataSet.FieldByName(u"B")->AsString(), QString("y"));
    QCOMPARE(dataSet.IndexFieldNames(), QString("B"));
    QVERIFY(LocateCDS(dataSet, "A", 2));
    QVERIFY(!LocateCDS(dataSet, "A", 9));
    QCOMPARE(dataSet.State(), DataSetState::Browse);
    QCOMPARE(dataSet.IndexFieldNames(), QString("B"));
    for (const auto& [fields, values, message] : std::initializer_list<std::tuple<QString, Variant, QString>>{
             {"A;B", 1, "Bound of array do not match with count of KeyFields"},
             {"A", VariantArray{1, 2}, "Bound of array do not match with count of KeyFields"},
             {"A;Няма", VariantArray{1, 2}, "Field Няма not found"}})
      try {
        LocateCDS(dataSet, fields, values);
        QFAIL("nothing was raised");
      } catch (const DataError& error) {
        QCOMPARE(error.message(), message);
        QCOMPARE(dataSet.IndexFieldNames(), QString("B"));
      }
  }
};

static const testing::RegisterTest<ToolsTest> registerToolsTest;
#include "tools_test.moc"
