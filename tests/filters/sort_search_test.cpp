#include "filters/sort_order.h"
#include "filters/text_search.h"
#include "several_tests.h"

using namespace kalvor;

class SortSearchTest : public QObject {
  Q_OBJECT

 private slots:
  void sortOrders_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("written");
    QTest::newRow("two") << "Name DESC, Code ASC" << "Name DESC, Code ASC";
    QTest::newRow("without direction") << "Name, Code desc" << "Name ASC, Code DESC";
    QTest::newRow("anything else ascends") << "Name up" << "Name ASC";
    QTest::newRow("empty") << "" << "";
  }
  void sortOrders()
  {
    QFETCH(QString, text);
    QTEST(sortOrderText(readSortOrder(text)), "written");
  }

  void matching_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("searched");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("wholeWords");
    QTest::addColumn<bool>("matches");
    const auto add = [](const char* text, const char* searched, bool letters, bool words, bool matches) {
      QTest::addRow("%s in %s, %d %d", searched, text, letters, words)
          << QString(text) << QString(searched) << letters << words << matches;
    };
    add("xab y", "ab", false, true, false);
    add("xa ab", "ab", false, true, true);
    add("abx ab", "ab", false, true, true);
    add("ab-x", "ab", false, true, false);
    add("Кафе мляно", "КАФЕ", false, false, true);
    add("Кафе мляно", "КАФЕ", true, false, false);
    add("Кафе мляно", "фе мл", true, false, true);
    add("Кафе", "Кафета", false, false, false);
  }
  void matching()
  {
    QFETCH(QString, text);
    QFETCH(QString, searched);
    QFETCH(bool, caseSensitive);
    QFETCH(bool, wholeWords);
    TextSearchOptions options;
    options.caseSensitive = caseSensitive;
    options.wholeWords = wholeWords;
    QTEST(matchesSearch(text, searched, options), "matches");
  }

  // Records 1, 3 and 4 hold what is searched for.
  void walking_data()
  {
    QTest::addColumn<SearchDirection>("direction");
    QTest::addColumn<SearchScope>("scope");
    QTest::addColumn<SearchStart>("start");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("found");
    using D = SearchDirection;
    using S = SearchScope;
    using B = SearchStart;
    QTest::newRow("first") << D::Forward << S::FromStart << B::ByScope << 3 << 1;
    QTest::newRow("last") << D::Backward << S::FromStart << B::ByScope << 0 << 4;
    QTest::newRow("after the current") << D::Forward << S::FromCurrent << B::ByScope << 1 << 3;
    QTest::newRow("before the current") << D::Backward << S::FromCurrent << B::ByScope << 3 << 1;
    QTest::newRow("next, whatever the scope") << D::Forward << S::FromStart << B::Next << 3 << 4;
    QTest::newRow("none after the last") << D::Forward << S::FromCurrent << B::Next << 4 << -1;
    QTest::newRow("none before the first") << D::Backward << S::FromCurrent << B::Next << 1 << -1;
  }
  void walking()
  {
    const QStringList texts{"ба", "аб", "бб", "раб", "аб а", "вг"};
    QFETCH(SearchDirection, direction);
    QFETCH(SearchScope, scope);
    QFETCH(SearchStart, start);
    QFETCH(int, current);
    TextSearchOptions options;
    options.direction = direction;
    options.scope = scope;
    const SearchedRecords records{[&](qsizetype row) { return texts[row]; },
                                  [&](qsizetype row) { return row < texts.size(); }, [&] { return texts.size() - 1; },
                                  {}};
    QFETCH(int, found);
    QCOMPARE(findSearchedRecord(records, current, "АБ", options, start), qsizetype(found));
  }

  void aStoppedSearchFindsNothing()
  {
    qsizetype read = 0;
    const SearchedRecords records{[&](qsizetype row) { read = row; return QString("x"); }, [](qsizetype) { return true; },
                                  [] { return qsizetype(0); }, [&] { return read > 5000; }};
    QCOMPARE(findSearchedRecord(records, -1, "y", {}, SearchStart::ByScope), qsizetype(-1));
    QVERIFY(read < 10000);
  }

  void optionsAreKept()
  {
    TextSearchOptions options{SearchDirection::Backward, SearchScope::FromCurrent, true, false, true};
    const QStringList lines{"Direction=1", "Scope=1", "CaseSentisive=1", "WholeWords=0", "EditOnTyping=1"};
    QCOMPARE(searchOptionLines(options), lines);
    QCOMPARE(readSearchOptions(lines), options);
    QCOMPARE(readSearchOptions({}), TextSearchOptions());
  }
};

static const testing::RegisterTest<SortSearchTest> registerSortSearchTest;
#include "sort_search_test.moc"
