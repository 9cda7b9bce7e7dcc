#include "filter_text.h"
#include "forms/form_filters.h"
#include "forms/messages.h"
#include "session/local_data.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::filterText;
using Kind = DefaultFilterDecision::Kind;

class FormFiltersTest : public QObject {
  Q_OBJECT
 private slots:
  void requestFilterKeepsItsOrder()
  {
    const FilterArray caller{{"C", "=", "1", "", ""}};
    const FilterArray security{{"S", "=", "1", "", ""}, {"S", "=", "2", "", ""}};
    const FilterArray form{{"F", "=", "1", "OR", ""}, {"F", "=", "2", "", ""}};
    const FilterArray base = callerWithSecurityFilter(caller, security);
    QCOMPARE(filterText(base), QString("(S;=;1;;() (S;=;2;AND;)) (C;=;1;)"));
    QCOMPARE(filterText(buildRequestFilter(base, form)),
             QString("(S;=;1;;(() (S;=;2;AND;)) (C;=;1;AND;)) (F;=;1;OR;() (F;=;2;;))"));
    QCOMPARE(filterText(buildRequestFilter({}, form)), QString("(F;=;1;OR;() (F;=;2;;))"));
    QVERIFY(buildRequestFilter(callerWithSecurityFilter({}, {}), {}).isEmpty());
  }

  void noRowFilterComparesATextWithANumber()
  {
    QCOMPARE(noRowFilter(), (FilterArray{{"1", "=", 2, "", ""}}));
    QCOMPARE(noRowFilter().first().value.typeId(), int(QMetaType::Int));
  }

  void defaultFilter_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasFilter");
    QTest::addColumn<int>("options");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("rows");
    const QString plain = "T.Comp_Id,=,<#Param(COMPANY_ID)#>,";
    const QString asking = "T.Comp_Id,=,<#Param(COMPANY_ID)#>,&<#Param(USER_FILTER)#>";
    QTest::newRow("used") << plain << false << int(so_Normal) << int(Kind::Use) << "(T.Comp_Id;=;7;)";
    QTest::newRow("asked") << asking << false << int(so_Normal) << int(Kind::AskUser) << "(T.Comp_Id;=;7;)";
    QTest::newRow("asked from nothing") << "<#Param(USER_FILTER)#>" << false << int(so_Normal) << int(Kind::AskUser)
                                        << "";
    QTest::newRow("has one") << plain << true << int(so_Normal) << int(Kind::None) << "";
    QTest::newRow("single selection") << plain << false << int(so_SelectSingle) << int(Kind::None) << "";
    QTest::newRow("multiple selection") << asking << false << int(so_SelectMulty) << int(Kind::None) << "";
    QTest::newRow("selection to edit") << plain << false << int(so_SelectEdit) << int(Kind::Use) << "(T.Comp_Id;=;7;)";
    QTest::newRow("no text") << "" << false << int(so_Normal) << int(Kind::None) << "";
  }
  void defaultFilter()
  {
    LocalData.CompanyId = "7";
    QFETCH(QString, text);
    QFETCH(bool, hasFilter);
    QFETCH(int, options);
    const FilterArray form = hasFilter ? FilterArray{{"F", "=", "1", "", ""}} : FilterArray();
    const DefaultFilterDecision decision = decideDefaultFilter(text, form, ShowOption(options));
    QTEST(int(decision.kind), "kind");
    QTEST(filterText(decision.filter), "rows");
  }

  void merging_data()
  {
    QTest::addColumn<FilterArray>("current");
    QTest::addColumn<FilterArray>("added");
    QTest::addColumn<bool>("merge");
    QTest::addColumn<QString>("rows");
    const FilterArray ab{{"A", "=", "1", "OR", "("}, {"B", "=", "2", "", ")"}};
    const FilterArray b{{"B", ">", "5", "", ""}};
    const FilterArray nameless{{"", "=", "1", "", ""}};
    QTest::newRow("replaces") << ab << b << false << "(B;>;5;)";
    QTest::newRow("keeps the other field") << ab << b << true << "(A;=;1;OR;() (B;>;5;)";
    QTest::newRow("joins with AND") << b << ab.mid(0, 1) << true << "(B;>;5;AND) (A;=;1;OR;()";
    QTest::newRow("nothing to merge with") << FilterArray() << b << true << "(B;>;5;)";
    QTest::newRow("rows without a field") << nameless << nameless << true << "(;=;1;AND) (;=;1;)";
  }
  void merging()
  {
    QFETCH(FilterArray, current);
    QFETCH(FilterArray, added);
    QFETCH(bool, merge);
    QTEST(filterText(mergeFormFilter(current, added, merge)), "rows");
  }

  void refusalsNameTheForm()
  {
    QCOMPARE(rightsRefusal(_err_ReadNotAllowed, 120),
             QString("Забранен е прегледа на данни за форма с код : 120\r\n"
                     "Моля, обърнете се към системния администратор за отстраняване на проблема!"));
    QCOMPARE(withText("няма място", "x"), QString("няма място"));
  }
};

static const testing::RegisterTest<FormFiltersTest> registerFormFiltersTest;
#include "form_filters_test.moc"
