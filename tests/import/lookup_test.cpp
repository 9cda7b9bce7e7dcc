#include "import/import_files.h"
#include "import/messages.h"
#include "scratch_documents.h"
#include "scripted_ports.h"
#include "session/import_log.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::AnsweringServer;
using kalvor::testing::lineText;

namespace {

// Items 4 to 8 of the lookups below: fallback, links, query, source, conditions.
const QString linksSection =
    QStringLiteral("[LINK_FIELDS_DESCR]SRC=Id,Name##DST=Item_Id,ItemName##ONE=Id##ID=Item_Id[##LINK_FIELDS_DESCR]");

FilterArray rowsOf(const FilterArray& filter)
{
  FilterArray rows = filter;
  for (FilterRow& row : rows)
    row.brackets.clear();
  return rows;
}

}  // namespace

class LookupTest : public QObject {
  Q_OBJECT

  std::unique_ptr<testing::ScratchDocuments> documents_;
  std::unique_ptr<testing::FixedClock> clock_;

  QString log() const { return QString::fromUtf8(documents_->read("Kalvor/ImportLog/20260118.LOG")); }

 private slots:
  void init()
  {
    documents_ = std::make_unique<testing::ScratchDocuments>();
    clock_ = std::make_unique<testing::FixedClock>(QDateTime(QDate(2026, 1, 18), QTime(9, 5, 7)));
    ImportInitLog();
  }
  void cleanup()
  {
    ImportCloseLog();
    clock_.reset();
    documents_.reset();
  }

  void outcomes_data()
  {
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("description");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("message");
    const QString one = "2|1||||SRC;DST|12|N_Item|N_Item.Code#=#8#A#";
    QTest::newRow("found") << "" << one << 1 << "Item_Id=7*; ItemName=Хляб*" << "";
    QTest::newRow("not found") << "" << one << 0 << "" << _err_RecNotFound;
    QTest::newRow("several") << "" << one << 2 << "" << _err_SelectorMultiRec;
    QTest::newRow("several, forced") << "FORCE_SELECT=12" << one << 2 << "Item_Id=7*; ItemName=Хляб*" << "";
    QTest::newRow("forced elsewhere") << "FORCE_SELECT=012" << one << 2 << "" << _err_SelectorMultiRec;
    QTest::newRow("several, rows are skipped") << "SKIP_INVALID_ROWS=1" << one << 2 << "" << _err_RecNotFound;
    QTest::newRow("a negative count") << "" << one << -1 << "" << _err_RecNotFound;
    QTest::newRow("lists differ") << "" << "2|1||||SRC;ID|12|N_Item|Code#=#8#A#" << 1 << "" << _err_SelectorDescr;
    QTest::newRow("a list is missing") << "" << "2|1||||ONE;NONE|12|N_Item|Code#=#8#A#" << 1 << "" << _err_SelectorDescr;
    QTest::newRow("no number") << "" << "2|0||||SRC;DST|12|N_Item|Code#=#3#12a#" << 1 << ""
                               << _err_ConditionValue + "12a";
  }
  void outcomes()
  {
    QFETCH(QString, options);
    QFETCH(QString, description);
    QFETCH(int, count);
    QFETCH(QString, cells);
    QFETCH(QString, message);
    AnsweringServer server;
    server.answers[12] = {count, VariantArray{7, "Хляб"}};
    const TImportFilter filter = testing::importFilter(options, {}, {}, linksSection);
    TImportLine line;
    QCOMPARE(ExecImportSelector(description, filter, line, 6, {}, server.services()), message.isEmpty());
    QCOMPARE(lineText(line), cells);
    QCOMPARE(server.messages.size(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty())
      QVERIFY2(server.messages[0].startsWith(message + "\r\nРед No: 5\r\nФилтър: "), qPrintable(server.messages[0]));
  }

  void requestAndReport()
  {
    AnsweringServer server;
    server.answers[0] = {1, "Код"};
    const TImportFilter filter = testing::importFilter("DECIMAL_SEPARATOR=,", {}, {}, linksSection);
    TImportLine line{{"Before", 1, false}};
    QVERIFY(!ExecImportSelector("2|0||||SRC;DST|12|N_Item|N_Item.Code#=#8#A\xC2\xA0 1#;Price#>#5#1,5#OR;Comp_Id#=#3#4#",
                                filter, line, 3, {}, server.services()));
    QCOMPARE(lineText(line), "Before=1");
    QCOMPARE(server.requests.size(), 4);
    QCOMPARE(server.requests[0].source, "N_Item");
    QCOMPARE(server.requests[0].columns, "Id,Name");
    const FilterArray sent{{"N_Item.Code", "=", QString::fromUtf8("A\xC2\xA0 1"), "AND", {}},
                           {"Price", ">", 1.5, "AND", {}},
                           {"Comp_Id", "=", qlonglong(4), "", {}}};
    QCOMPARE(rowsOf(server.requests[0].filter), sent);
    const FilterArray caption{{"S_FIELDLIST.SQL_ID", "=", 12, "AND", {}}, {"S_FIELDLIST.FIELDNAME", "=", "Code", "", {}}};
    QCOMPARE(server.requests[1].source, "S_FIELDLIST");
    QCOMPARE(server.requests[1].columns, "CAPTION");
    QCOMPARE(server.requests[1].filter, caption);
    const QString text = _err_RecNotFound + QString::fromUtf8("\r\nРед No: 2\r\nФилтър: Код=A\xC2\xA0 1\r\nКод>1,5\r\nКод=4\r\n");
    QCOMPARE(server.messages, QStringList{text});
    QCOMPARE(log(), "[09:05:07 Процедура: ExecImportSelector]\r\n[Грешка]: " + text + "\r\n\r\n");
  }

  void withoutConditionsAndCaptions()
  {
    AnsweringServer server;
    server.answers[12] = {1, 7};
    const TImportFilter filter = testing::importFilter({}, {}, {}, linksSection);
    TImportLine line;
    QVERIFY(ExecImportSelector("2|0||||ONE;ID|12|N_Item|", filter, line, 3, {}, server.services()));
    QVERIFY(server.requests[0].filter.isEmpty());
    QCOMPARE(lineText(line), "Item_Id=7");
    server.failingQuery = 13;
    QVERIFY(!ExecImportSelector("2|0||||ONE;ID|13|N_Item|N_Item.Code#=#8#A#", filter, line, 3, {}, server.services()));
    QCOMPARE(server.messages, QStringList{"Сървърът не отговаря.\r\nРед No: 2\r\nФилтър: Code=A\r\n"});
    QVERIFY(!ExecImportSelector("", filter, line, 3, {}, {}));
  }

  void fallbacks_data()
  {
    QTest::addColumn<QString>("index");
    QTest::addColumn<int>("ownCount");
    QTest::addColumn<QString>("cells");
    QTest::newRow("the first without an index") << "" << 0 << "Item_Id=21*";
    QTest::newRow("by index") << "2" << 0 << "Item_Id=22";
    QTest::newRow("several found") << "2" << 3 << "Item_Id=22";
    QTest::newRow("beyond the list") << "3" << 0 << "";
    QTest::newRow("zero") << "0" << 0 << "";
    QTest::newRow("not a number") << "x" << 0 << "Item_Id=21*";
    QTest::newRow("not needed") << "1" << 1 << "Item_Id=7";
  }
  void fallbacks()
  {
    QFETCH(QString, index);
    QFETCH(int, ownCount);
    QFETCH(QString, cells);
    AnsweringServer server;
    server.answers[12] = {ownCount, 7};
    server.answers[101] = {1, 21};
    server.answers[102] = {1, 22};
    const TImportFilter filter = testing::importFilter({}, {}, {}, linksSection);
    TImportLine line;
    const QStringList fallbacks{"2|1|||1|ONE;ID|101|N_Item|Code#=#8#X#", "2|0|||1|ONE;ID|102|N_Item|Code#=#8#Y#"};
    QCOMPARE(ExecImportSelector("2|0|||" + index + "|ONE;ID|12|N_Item|Code#=#8#A#", filter, line, 3, fallbacks,
                                server.services()),
             !cells.isEmpty());
    QCOMPARE(lineText(line), cells);
    QCOMPARE(server.messages.size(), cells.isEmpty() ? 1 : 0);
  }

  void conditionTypes_data()
  {
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Variant>("value");
    const QDateTime day(QDate(2024, 1, 31), QTime(0, 0));
    QTest::newRow("text") << 8 << " 007 " << Variant(" 007 ");
    QTest::newRow("unknown code") << 77 << "007" << Variant("007");
    QTest::newRow("integer") << 3 << " 007 " << Variant(7LL);
    QTest::newRow("real") << 5 << "1,5" << Variant(1.5);
    QTest::newRow("real with a point") << 14 << "1.5" << Variant(1.5);
    QTest::newRow("currency") << 6 << "1,23456" << Variant(1.2346);
    QTest::newRow("date of the filter") << 7 << "01/31/2024" << Variant(day);
    QTest::newRow("date as people write it") << 7 << "31.01.2024" << Variant(day);
    QTest::newRow("boolean") << 11 << "True" << Variant(true);
    QTest::newRow("empty number") << 3 << " " << Variant();
    QTest::newRow("unicode text") << 258 << "ъ" << Variant("ъ");
  }
  void conditionTypes()
  {
    QFETCH(int, code);
    QFETCH(QString, text);
    TFormatSettings settings;
    settings.DecimalSeparator = u',';
    settings.DateSeparator = u'/';
    settings.ShortDateFormat = "mm/dd/yyyy";
    FilterArray filter;
    AddAdvFilter(filter, QStringLiteral("F|=|%1|%2|").arg(code).arg(text), settings);
    QCOMPARE(filter.size(), 1);
    QTEST(filter[0].value, "value");
  }

  void refusedConditionTypes()
  {
    for (const char* condition : {"F|=|2|40000|", "F|=|17|-1|", "F|=|11|x|", "F|=|7|32.01.2024|", "F|=|5|1,2,3|"}) {
      FilterArray filter;
      QVERIFY_EXCEPTION_THROWN(AddAdvFilter(filter, condition), DataError);
      QVERIFY(filter.isEmpty());
    }
  }

  void conditionsAreAdded()
  {
    FilterArray filter{{"A", "=", 1, "", {}}};
    AddAdvFilter(filter, "  ");
    QCOMPARE(filter.size(), 1);
    AddAdvFilter(filter, "B|=|8|x|OR##C|<>|8|y|OR");
    const FilterArray expected{{"A", "=", 1, "AND", {}}, {"B", "=", "x", "AND", "("}, {"C", "<>", "y", "", ")"}};
    QCOMPARE(filter, expected);
  }
};

static const testing::RegisterTest<LookupTest> registered;
#include "lookup_test.moc"
