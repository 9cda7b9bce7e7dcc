#include "filter_text.h"
#include "filters/filter_expression.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::filterText;

class StoredFilterTest : public QObject {
  Q_OBJECT
 private slots:
  void storedAndReadBack_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rows");
    QTest::newRow("two") << "Name,LIKE,ab%,&Code,=,5," << "(Name;LIKE;ab%;AND) (Code;=;5;)";
    QTest::newRow("or") << "Code,=,1,|Code,=,3,|Code,=,5," << "(Code;=;1;OR) (Code;=;3;OR) (Code;=;5;)";
    QTest::newRow("one") << "Name,=,x," << "(Name;=;x;)";
    QTest::newRow("no value") << "Name,=,,&Code,is,null," << "(Name;=;;AND) (Code;is;null;)";
    QTest::newRow("long row") << "Name,=," + QString(400, u'я') + ",&B,=,1,"
                              << "(Name;=;" + QString(400, u'я') + ";AND) (B;=;1;)";
  }
  void storedAndReadBack()
  {
    QFETCH(QString, text);
    const FilterArray filter = BuildFilterFromStr(text);
    QTEST(filterText(filter), "rows");
    QCOMPARE(BuildStrFilter(filter), text);
  }

  void odditiesAreRead_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rows");
    QTest::newRow("two items only") << "Name,=" << "";
    QTest::newRow("two items and a comma") << "Name,=," << "";
    QTest::newRow("empty") << "" << "";
    QTest::newRow("separators only") << ",,,&,|" << "(;;;AND) (;;;)";
    QTest::newRow("comma after the sign") << "A,=,1,& ,B,=,2," << "(A;=;1;AND) (B;=;2;)";
    QTest::newRow("sign at the end") << "A,=,1,&," << "(A;=;1;)";
    QTest::newRow("without the last comma") << "A,=,1" << "(A;=;1;)";
    QTest::newRow("further items") << "A,=,1,2,3,|B,=,2," << "(A;=;1;OR) (B;=;2;)";
  }
  void odditiesAreRead()
  {
    QFETCH(QString, text);
    QTEST(filterText(BuildFilterFromStr(text)), "rows");
  }

  void valuesPassThroughTheFunction()
  {
    const auto twice = [](const QString& value) { return value + value; };
    QCOMPARE(filterText(BuildFilterFromStr("A,=,x,&B,<>,y,", twice)), QString("(A;=;xx;AND) (B;<>;yy;)"));
    try {
      BuildFilterFromStr("A,=,x,", [](const QString&) -> QString { throw DataError("няма"); });
      QFAIL("nothing was raised");
    } catch (const TELException& error) {
      QCOMPARE(error.procedure(), QString("uKalvorCommonUtils.BuildFilterFromStr"));
      QCOMPARE(error.message(), QString("няма"));
    }
  }

  void typedValuesAreStoredAsText()
  {
    const FilterArray filter{
        {"D", ">=", QDate(2024, 1, 15), "AND", "("}, {"N", "=", 1.5, "OR", ")"}, {"I", "=", 2, "", ""}};
    QCOMPARE(BuildStrFilter(filter), QString("D,>=,20240115,&N,=,1.5,|I,=,2,"));
    QCOMPARE(BuildStrFilter({}), QString());
  }

  void joining_data()
  {
    QTest::addColumn<FilterArray>("first");
    QTest::addColumn<FilterArray>("second");
    QTest::addColumn<QString>("rows");
    const FilterArray one{{"A", "=", "1", "OR", ""}};
    const FilterArray two{{"B", "=", "2", "OR", ""}, {"C", "=", "3", "x", ""}};
    const FilterArray grouped{{"B", "=", "2", "OR", "("}, {"C", "=", "3", "", ")"}};
    const FilterArray emptyRow{FilterRow(), {"A", "=", "1", "", ""}};
    QTest::newRow("two and one") << two << one << "(A;=;1;AND) (B;=;2;OR;() (C;=;3;;))";
    QTest::newRow("one and two") << one << two << "(B;=;2;OR;() (C;=;3;AND;)) (A;=;1;)";
    QTest::newRow("brackets nest") << grouped << FilterArray() << "(B;=;2;OR;(() (C;=;3;;)))";
    QTest::newRow("first only") << one << FilterArray() << "(A;=;1;)";
    QTest::newRow("second only") << FilterArray() << one << "(A;=;1;)";
    QTest::newRow("none") << FilterArray() << FilterArray() << "";
    QTest::newRow("empty first row") << emptyRow << one << "(A;=;1;)";
  }
  void joining()
  {
    QFETCH(FilterArray, first);
    QFETCH(FilterArray, second);
    QTEST(filterText(GetAllFilter(first, second)), "rows");
  }

  void slashStrings_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("rows");
    QTest::newRow("two") << "A/=/1/AND\\\\B/LIKE/x%/" << "(A;=;1;AND) (B;LIKE;x%;)";
    QTest::newRow("trailing separator") << "A/=/1/\\\\" << "(A;=;1;)";
    QTest::newRow("short row") << "A" << "(A;;;)";
    QTest::newRow("blank") << "  " << "";
  }
  void slashStrings()
  {
    QFETCH(QString, text);
    QTEST(filterText(GetFilterFromStr(text)), "rows");
  }

  void typedStrings()
  {
    FilterArray filter{{"Z", "=", "0", "", ""}};
    BuildFilterFromString(" ", ";", filter);
    QCOMPARE(filter.size(), 1);
    BuildFilterFromString("A;=;3;12|B;<>;256;<#Param(X)#>&C;>;5;1,5&D;=;8;tail", ";", filter);
    QCOMPARE(filterText(filter), QString("(A;=;12;OR;() (B;<>;;AND) (C;>;1.5;AND;)) (Z;=;0;)"));
    QCOMPARE(filter.at(0).value.typeId(), int(QMetaType::LongLong));
    QCOMPARE(filter.at(2).value.typeId(), int(QMetaType::Double));
    const FilterArray before = filter;
    try {
      BuildFilterFromString("A;=;3;x|", ";", filter);
      QFAIL("nothing was raised");
    } catch (const TELException& error) {
      QCOMPARE(error.procedure(), QString("KalvorUtils.BuildFilterFromString"));
    }
    QCOMPARE(filter, before);
  }
};

static const testing::RegisterTest<StoredFilterTest> registerStoredFilterTest;
#include "stored_filter_test.moc"
