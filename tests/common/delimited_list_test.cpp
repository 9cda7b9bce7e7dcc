#include "common/delimited_list.h"
#include "several_tests.h"

using namespace kalvor;

class DelimitedListTest : public QObject {
  Q_OBJECT
 private slots:
  void counting_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<int>("count");
    QTest::newRow("trailing") << "a,b," << "," << 2;
    QTest::newRow("empty") << "" << "," << 1;
    QTest::newRow("inner empty") << "a,,b" << "," << 3;
    QTest::newRow("separators only") << ",," << "," << 2;
    QTest::newRow("trailing blanks") << "a, " << "," << 1;
    QTest::newRow("long separator") << "a\\\\b\\\\" << "\\\\" << 2;
    QTest::newRow("no separator") << "abc" << "" << 1;
  }
  void counting()
  {
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QTEST(GetItemsCountInList(text, separator), "count");
  }

  void items_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("replaced");
    QTest::newRow("first") << "a;b;c" << 0 << "a" << "X;b;c";
    QTest::newRow("last") << "a;b;c" << 2 << "c" << "a;b;X";
    QTest::newRow("beyond") << "a;b;c" << 3 << "" << "a;b;c";
    QTest::newRow("trailing empty") << "a;" << 1 << "" << "a;X";
    QTest::newRow("of nothing") << "" << 0 << "" << "X";
    QTest::newRow("negative") << "a;b" << -1 << "" << "a;b";
  }
  void items()
  {
    QFETCH(QString, text);
    QFETCH(int, index);
    QTEST(GetItemAtPos(text, ";", index), "item");
    SetItemAtPos(text, ";", "X", index);
    QTEST(text, "replaced");
  }

  void positions()
  {
    QCOMPARE(GetPosOfItem("a; b ;c", ";", "b"), 1);
    QCOMPARE(GetPosOfItem("a;b;c", ";", " c "), 2);
    QCOMPARE(GetPosOfItem("a;b;c", ";", "A"), -1);
    QCOMPARE(GetPosOfItem("", ";", ""), 0);
    QString blanks = "a b  ";  // two items, three separators
    SetItemAtPos(blanks, " ", "X", 3);
    QCOMPARE(blanks, QString("a b  "));
  }
};

static const testing::RegisterTest<DelimitedListTest> registerDelimitedListTest;
#include "delimited_list_test.moc"
