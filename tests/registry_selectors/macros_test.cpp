// Macros that refer to the record, its form and the control that opened a lookup.
#include "fake_form.h"
#include "filter_text.h"
#include "filters/filter_macros.h"
#include "filters/selector_macros.h"
#include "scripted_ports.h"
#include "session/local_data.h"
#include "several_tests.h"

namespace kalvor::testing {

class SelectorMacrosTest : public QObject {
  Q_OBJECT
 private slots:
  // Every macro in both routines: of the session (filters of forms and rights), of the record (filters of lookups).
  void expansion_data()
  {
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("ofSession");
    QTest::addColumn<QString>("ofRecord");
    const auto row = [](const char* value, const char* ofSession, const char* ofRecord) {
      QTest::newRow(value) << QString::fromUtf8(value) << QString::fromUtf8(ofSession) << QString::fromUtf8(ofRecord);
    };
    row("plain", "plain", "plain");
    row("<#Field(Code)#>", "<#Field(Code)#>", "A1");
    row("text before <#Field(code)#>", "text before <#Field(code)#>", "A1");
    row("<#Field(Code)#> text", "<#Field(Code)#> text", "<#Field(Code)#> text");
    row("<#Field(Missing)#>", "<#Field(Missing)#>", "<#Field(Missing)#>");
    row("<#MasterField(Contragent_Id)#>", "<#MasterField(Contragent_Id)#>", "K7");
    row("<#MasterField(Missing)#>", "<#MasterField(Missing)#>", "<#MasterField(Missing)#>");
    row("<#Param(OwnerValue)#>", "", "typed");
    row("<#Param(ownervalue)#>", "", "<#Param(ownervalue)#>");
    row("<#Param(company_id)#>", "5", "5");
    row("before <#Param(COMPANY_ID)#>", "5", "5");
    row("<#Param(BUSINESSGROUP_ID)#>", "7", "7");
    row("<#Param(User_Id)#>", "AB", "AB");
    row("<#Param(CURRENT_DATE)#>", "20240309", "<#Param(CURRENT_DATE)#>");
    row("<#Param(current_date)#>", "20240309", "<#Param(current_date)#>");
    row("<#Param(-7d)#>", "20240302", "<#Param(-7d)#>");
    row("<#Param(-1м)#>", "20240209", "<#Param(-1м)#>");
    row("<#Param(Other)#>", "", "<#Param(Other)#>");
    row("<#Const(1)#>", "<#Const(1)#>", "1");
    row("<#SqlParam(side)#>", "<#SqlParam(side)#>", "9");
    row("<#SqlParam(Missing)#>", "<#SqlParam(Missing)#>", "<#SqlParam(Missing)#>");
    row("<#CURRENTCOMPANY#>", "<#CURRENTCOMPANY#>", "<#CURRENTCOMPANY#>");
  }
  void expansion()
  {
    QFETCH(QString, value);
    const FixedClock clock(QDateTime(QDate(2024, 3, 9), QTime(12, 0)));
    LocalData.CompanyId = QStringLiteral("5");
    LocalData.BGroupId = QStringLiteral("7");
    LocalData.UserId = QStringLiteral("AB");
    FakeForm form;
    form.parameters = {{QStringLiteral("Side"), 9}};
    TClientDataSet* master = form.addDataSet(QStringLiteral("cdsMaster"), {fieldDef(QStringLiteral("Contragent_Id"))});
    master->AppendRecord({QStringLiteral("K7")});
    TClientDataSet* lines = form.addDataSet(QStringLiteral("cdsDetail"), {fieldDef(QStringLiteral("Code"))});
    lines->AppendRecord({QStringLiteral("A1")});
    const FakeControl control(QStringLiteral("typed"));
    QTEST(ConvertSimleParamFilterValues(value), "ofSession");
    QTEST(variantText(ReturnFilterFieldValue(value, lines, &control, &form)), "ofRecord");
    LocalData = TLocalData();
  }

  void missingReferents()
  {
    TClientDataSet alone;
    alone.CreateDataSet({fieldDef(QStringLiteral("Code"))});
    const QString ownerValue = QStringLiteral("<#Param(OwnerValue)#>");
    const QString masterField = QStringLiteral("<#MasterField(Code)#>");
    const FakeControl empty;
    QCOMPARE(ReturnFilterFieldValue(ownerValue, &alone, nullptr, nullptr), Variant(ownerValue));
    QCOMPARE(ReturnFilterFieldValue(ownerValue, &alone, &empty, nullptr), Variant(QString()));
    QCOMPARE(ReturnFilterFieldValue(masterField, &alone, nullptr, nullptr), Variant(masterField));
    QCOMPARE(ReturnFilterFieldValue(QStringLiteral("<#Field(Code)#>"), nullptr, nullptr, nullptr),
             Variant(QStringLiteral("<#Field(Code)#>")));
  }

  void valuesKeepTheirType()
  {
    FakeForm form;
    TClientDataSet* master = form.addDataSet(QStringLiteral("cdsMaster"), {fieldDef(QStringLiteral("Type"), DataType::Integer)});
    master->AppendRecord({3});
    QCOMPARE(ReturnFilterFieldValue(QStringLiteral("<#Field(Type)#>"), master, nullptr, &form), Variant(qlonglong(3)));
  }

  void builtFilter()
  {
    FakeForm form;
    TClientDataSet* lines = form.addDataSet(QStringLiteral("cdsMaster"), {fieldDef(QStringLiteral("Code"))});
    lines->AppendRecord({QStringLiteral("A1")});
    const FakeControl control(QStringLiteral("бр"));
    const QString text = QStringLiteral("N_Measure.Code,LIKE,<#Param(OwnerValue)#>,&N_Item.Code,=,<#Field(Code)#>,");
    QCOMPARE(filterText(BuildSelectorFilter(text, lines, &control, &form)),
             QStringLiteral("(N_Measure.Code;LIKE;бр;AND) (N_Item.Code;=;A1;)"));
    QVERIFY(BuildSelectorFilter(QStringLiteral("a,b"), lines, &control, &form).isEmpty());
  }

  void withoutARecord()
  {
    TSelector selector(nullptr, static_cast<TField*>(nullptr),
                       QStringLiteral(";150;Id;A;A,=,1,&B,=,<#Field(B)#>,&C,=,3,;D,=,<#Field(B)#>,$;140;Id;A;E,=,1,"),
                       nullptr);
    RemoveSelectorFilterLinesWithFieldRels(selector);
    QCOMPARE(selector.Items[0].Filter, QStringLiteral("A,=,1,&C,=,3,"));
    QCOMPARE(selector.Items[0].PublicFilter, QString());
    QCOMPARE(selector.Items[1].Filter, QStringLiteral("E,=,1,"));
  }
};

const RegisterTest<SelectorMacrosTest> selectorMacrosTest;

}  // namespace kalvor::testing

#include "macros_test.moc"
