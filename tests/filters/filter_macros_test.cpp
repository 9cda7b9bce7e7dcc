#include "filters/filter_macros.h"
#include "several_tests.h"

using namespace kalvor;

class FilterMacrosTest : public QObject {
  Q_OBJECT
 private slots:
  void recordRelativeRowsAreRemoved_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");
    QTest::newRow("middle") << "A,=,1,&B,=,<#Field(X)#>,&C,=,3," << "A,=,1,&C,=,3,";
    QTest::newRow("or group goes whole") << "A,=,1,|B,=,<#Field(X)#>,&C,=,3," << "C,=,3,";
    QTest::newRow("all") << "B,=,<#Field(X)#>," << "";
    QTest::newRow("none") << "A,=,1," << "A,=,1,";
  }
  void recordRelativeRowsAreRemoved()
  {
    QFETCH(QString, text);
    RemoveFilterLinesWithFieldRels(text);
    QTEST(text, "left");
  }
};

static const testing::RegisterTest<FilterMacrosTest> registerFilterMacrosTest;
#include "filter_macros_test.moc"
