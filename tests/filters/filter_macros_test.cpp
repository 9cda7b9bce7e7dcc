#include "filters/filter_macros.h"
#include "scripted_ports.h"
#include "session/local_data.h"
#include "several_tests.h"

using namespace kalvor;

class FilterMacrosTest : public QObject {
  Q_OBJECT
 private slots:
  void sessionParameters_data()
  {
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expanded");
    const auto row = [](const char* value, const char* expanded) {
      QTest::newRow(value) << QString(value) << QString(expanded);
    };
    row("<#Param(COMPANY_ID)#>", "C1");
    row("<#Param(company_id)#>", "C1");
    row("<#Param(BUSINESSGROUP_ID)#>", "G1");
    row("<#Param(User_Id)#>", "иван");
    row("<#Param(CURRENT_DATE)#>", "20240309");
    row("<#Param(-7d)#>", "20240302");
    row("<#Param(-1м)#>", "20240209");
    row("before <#Param(COMPANY_ID)#>", "C1");
    row("<#Param(OTHER)#>", "");
    row("<#Param(", "");
    row("<#Field(Id)#>", "<#Field(Id)#>");
    row("plain", "plain");
  }
  void sessionParameters()
  {
    testing::FixedClock clock(QDateTime(QDate(2024, 3, 9), QTime(12, 0)));
    LocalData.CompanyId = "C1";
    LocalData.BGroupId = "G1";
    LocalData.UserId = "иван";
    QFETCH(QString, value);
    QTEST(ConvertSimleParamFilterValues(value), "expanded");
  }

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
