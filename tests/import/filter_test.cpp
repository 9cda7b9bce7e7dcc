#include "data/data_error.h"
#include "import/import_filter.h"
#include "import/record_lines.h"
#include "several_tests.h"

using namespace kalvor;

class FilterTest : public QObject {
  Q_OBJECT

 private slots:
  void sections_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("tags in any case") << "x [options]TXTFILE_SEP=Tab##FIRST_ROW=2[##Options] y"
                                      << QStringList{"TXTFILE_SEP=Tab", "FIRST_ROW=2"};
    QTest::newRow("several lines") << "[OPTIONS]\r\nA=1 ##\r\n B=2\r\n##\r\n[##OPTIONS]" << QStringList{"A=1", "B=2"};
    QTest::newRow("a line end inside an entry") << "[OPTIONS]A=1\r\n2[##OPTIONS]" << QStringList{"A=1 2"};
    QTest::newRow("empty entries") << "[OPTIONS]A=1##  ##B=2##[##OPTIONS]" << QStringList{"A=1", "B=2"};
    QTest::newRow("no closing tag") << "[OPTIONS]A=1[OPTIONS]" << QStringList();
    QTest::newRow("no opening tag") << "A=1[##OPTIONS]" << QStringList();
    QTest::newRow("closed before it opens") << "[##OPTIONS][OPTIONS]A=1" << QStringList();
    QTest::newRow("one number sign") << "[OPTIONS]A=x#y##B=#[##OPTIONS]" << QStringList{"A=x#y", "B=#"};
  }
  void sections()
  {
    QFETCH(QString, text);
    QFETCH(QStringList, entries);
    TImportFilter filter(7);
    QVERIFY(!filter.Loaded);
    filter.LoadImportParams(text);
    QCOMPARE(filter.Options.entries(), entries);
    QVERIFY(filter.Loaded);
    QVERIFY(filter.CdsMaster.isEmpty());
  }

  void everySectionGoesToItsList()
  {
    TImportFilter filter(7);
    filter.LoadImportParams("[CDSDETAIL]2=d[##CDSDETAIL][CDSMASTER]1=m[##CDSMASTER][DEFAULT_SELECTOR]1=s"
                            "[##DEFAULT_SELECTOR][LINK_FIELDS_DESCR]L=a,b[##LINK_FIELDS_DESCR]");
    QCOMPARE(filter.CdsMaster.entries(), QStringList{"1=m"});
    QCOMPARE(filter.CdsDetail.entries(), QStringList{"2=d"});
    QCOMPARE(filter.LinkFieldsDescr.value("l"), "a,b");
    QCOMPARE(filter.DefaultSelector.entries(), QStringList{"1=s"});
  }

  void lookupOfEntries()
  {
    ImportEntries entries;
    for (const char* entry : {"nothing", "Key=a=b", "KEY=second", "Nothing=x"})
      entries.append(entry);
    QCOMPARE(entries.value("KEY"), "a=b");
    QCOMPARE(entries.name(1), "Key");
    QCOMPARE(entries.value("nothing"), "x");
    QVERIFY(!entries.contains("Other"));
    QCOMPARE(entries.value("Other"), QString());
  }

  void formats()
  {
    const TFormatSettings system;
    TImportFilter filter(1);
    TFormatSettings settings;
    settings.DateSeparator = u'!';
    filter.LoadImportParams("[OPTIONS]DATE_FORMAT=##DATE_SEPARATOR=[##OPTIONS]");
    SetFormatSetting(filter, settings);
    QCOMPARE(settings.DateSeparator, system.DateSeparator);
    QCOMPARE(settings.ShortDateFormat, system.ShortDateFormat);
    QCOMPARE(settings.DecimalSeparator, system.DecimalSeparator);
    TImportFilter own(1);
    own.LoadImportParams("[OPTIONS]DATE_FORMAT=mm/dd/yyyy##DATE_SEPARATOR=/-##DECIMAL_SEPARATOR=.,[##OPTIONS]");
    SetFormatSetting(own, settings);
    QCOMPARE(settings.ShortDateFormat, "mm/dd/yyyy");
    QCOMPARE(settings.DateSeparator, u'/');
    QCOMPARE(settings.DecimalSeparator, u'.');
  }

  void recordLines()
  {
    const auto field = [](const char* name, const Variant& value) { return TFieldSet{0, name, value, nullptr, false}; };
    TRecordLine line{field("Code", "A"), field("code", 2), field("Code", "C")};
    QCOMPARE(GetRecLineFldValue(line, "code"), Variant(2));
    QVERIFY(isNull(GetRecLineFldValue(line, "CODE")));
    QVERIFY(SetRecLineFldValue(line, "CODE", "B"));
    QCOMPARE(line[0].Value, Variant("B"));
    QVERIFY(!SetRecLineFldValue(line, "Name", 1));
    TSelectionList list{line, {field("Id", 1)}, {field("Id", 2)}};
    DeleteCell(list, 3);
    DeleteCell(list, -1);
    QCOMPARE(list.size(), 3);
    DeleteCell(list, 1);
    QCOMPARE(GetRecLineFldValue(list[1], "Id"), Variant(2));
  }

  void search_data()
  {
    QTest::addColumn<QString>("names");
    QTest::addColumn<VariantArray>("values");
    QTest::addColumn<bool>("all");
    QTest::addColumn<int>("found");
    QTest::newRow("both") << "Id;Kind" << VariantArray{2, "b"} << true << 2;
    QTest::newRow("any: the first name decides") << "Id;Kind" << VariantArray{2, "z"} << false << 1;
    QTest::newRow("any: the second alone is not enough") << "Id;Kind" << VariantArray{9, "b"} << false << -1;
    QTest::newRow("one of two is not all") << "Id;Kind" << VariantArray{2, "z"} << true << -1;
    QTest::newRow("a number and its text") << "Id" << VariantArray{"2"} << true << 1;
    QTest::newRow("empty equals nothing") << "Note" << VariantArray{""} << true << -1;
    QTest::newRow("null equals nothing") << "Note" << VariantArray{Variant()} << true << -1;
    QTest::newRow("names count by case") << "id" << VariantArray{2} << true << -1;
    QTest::newRow("too few values") << "Id;Kind" << VariantArray{2} << true << -1;
  }
  void search()
  {
    QFETCH(QString, names);
    QFETCH(VariantArray, values);
    QFETCH(bool, all);
    const auto record = [](int id, const char* kind) {
      return TRecordLine{TFieldSet{0, "Id", id, nullptr, false}, TFieldSet{0, "Kind", kind, nullptr, false},
                         TFieldSet{0, "Note", "", nullptr, false}};
    };
    int index = -1;
    const bool found = FindInArray({record(1, "a"), record(2, "a"), record(2, "b")}, names, values, all, index);
    QTEST(index, "found");
    QCOMPARE(found, index >= 0);
  }

  void dateTimes()
  {
    QCOMPARE(GenerateDateTime("31.01.2024", "YYYYMMDD"), QDateTime(QDate(2024, 1, 31), QTime(0, 0)));
    QCOMPARE(GenerateDateTime("5.4.2024", "yyyyddmm"), QDateTime(QDate(2024, 5, 4), QTime(0, 0)));
    QVERIFY_EXCEPTION_THROWN(GenerateDateTime("31.01.2024", "yyyyddmm"), DataError);
  }
};

static const testing::RegisterTest<FilterTest> registered;
#include "filter_test.moc"
