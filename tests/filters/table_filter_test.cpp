#include "filter_text.h"
#include "filters/filter_expression.h"
#include "scripted_ports.h"
#include "session/local_data.h"
#include "several_tests.h"
#include "table_filter_fields.h"

using namespace kalvor;
using namespace kalvor::testing;

class TableFilterTest : public QObject {
  Q_OBJECT

  TClientDataSet dataSet_;
  std::unique_ptr<FilterFields> fields_;
  const QDateTime today_{QDate(2024, 3, 9), QTime(12, 30)};

 private slots:
  void initTestCase()
  {
    createSampleDataSet(dataSet_);
    fields_ = std::make_unique<FilterFields>(descriptionRows(sampleDescriptions()), &dataSet_);
  }

  void theDropDownOffersFilterableFields()
  {
    QCOMPARE(fields_->captions(), QStringList({"Активен", "Дата", "Име", "Код", "Контрагент", "Сума", "Състояние"}));
  }

  // Rows of the editor, and the filter they mean. The rows come back from the filter as they were, unless other is set.
  void rowsBecomeAFilter_data()
  {
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("other");
    const auto add = [](const char* name, const QStringList& rows, const char* filter, const QStringList& other = {}) {
      QTest::newRow(name) << rows << QString(filter) << other;
    };
    add("contains and equal", {"Име;Съдържа;ab;И", "Код;=;5;"}, "(T.Name;LIKE;ab;AND) (T.Code;=;5;)");
    add("or", {"Име;=;a;ИЛИ", "Име;<>;b;"}, "(T.Name;=;a;OR) (T.Name;<>;b;)");
    add("several values", {"Име;=;a|b|c;И", "Код;>;1;"},
        "(T.Name;=;a;OR;() (T.Name;=;b;OR) (T.Name;=;c;AND;)) (T.Code;>;1;)");
    add("trailing separators", {"Име;=; a|b|| ;"}, "(T.Name;=;a;OR;() (T.Name;=;b;;))", {"Име;=;a|b;"});
    add("only one left", {"Име;=;a|;"}, "(T.Name;=;a;)", {"Име;=;a;"});
    add("typed several values", {"Код;=;1|3;"}, "(T.Code;=;1;OR;() (T.Code;=;3;;))");
    add("empty equals", {"Име;=;;И", "Код;=;5;"}, "(T.Name;=;;OR;() (T.Name;is;null;AND;)) (T.Code;=;5;)");
    add("empty differs", {"Име;<>;;"}, "(T.Name;<>;;AND;() (T.Name;is not;null;;))");
    add("empty date", {"Дата;=;;"}, "(T.DocDate;=;;OR;() (T.DocDate;is;null;;))");
    add("yes", {"Активен;=;Да;"}, "(T.Active;=;1;)");
    add("anything else is no", {"Активен;=;;"}, "(T.Active;=;0;)", {"Активен;=;Не;"});
    add("option", {"Състояние;=;Платена;"}, "(T.Status;=;1;)");
    add("options", {"Състояние;=;Нова|Анулирана;"}, "(T.Status;=;0;OR;() (T.Status;=;2;;))");
    add("amount", {"Сума;>=;1,5;"}, "(T.Amount;>=;1.5;)", {"Сума;>=;1.5;"});
    add("amount as it came back", {"Сума;>=;1.5;"}, "(T.Amount;>=;1.5;)");
    add("date", {"Дата;>;15.01.2024;"}, "(T.DocDate;>;20240115;)", {"Дата;>;20240115;"});
    add("date as it came back", {"Дата;>;20240115;"}, "(T.DocDate;>;20240115;)");
    add("relative date", {"Дата;>=;-1m;"}, "(T.DocDate;>=;20240209;)", {"Дата;>=;20240209;"});
    add("no operator means equal", {"Име;;a;"}, "(T.Name;=;a;)", {"Име;=;a;"});
    add("the last row joins nothing", {"Име;=;a;И"}, "(T.Name;=;a;)", {"Име;=;a;"});
    add("a blank row ends the table", {"Име;=;a;", ";;;", "Код;=;5;"}, "(T.Name;=;a;)", {"Име;=;a;"});
    add("no rows", {";;;"}, "", {";;;"});
  }
  void rowsBecomeAFilter()
  {
    FixedClock clock(today_);
    ScriptedPrompt prompt;
    QFETCH(QStringList, rows);
    QFETCH(QStringList, other);
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, rows);
    TableFilterFailure failure;
    const auto result = buildTableFilter(grid, *fields_, TableFilterMode::Values, failure);
    QVERIFY2(result, qPrintable(prompt.messages.join(u'\n')));
    QTEST(filterText(result->filter), "filter");

    // The stored form knows no brackets.
    FilterArray bare = result->filter;
    for (FilterRow& line : bare)
      line.brackets.clear();
    QCOMPARE(filterText(BuildFilterFromStr(BuildStrFilter(result->filter))), filterText(bare));

    StringTable back(tableFilterColumnCount);
    int row = 1;
    FillGridFromFilter(back, *fields_, TableFilterMode::Values, result->filter, {}, row);
    QCOMPARE(tableTexts(back), other.isEmpty() ? rows : other);
    const auto again = buildTableFilter(back, *fields_, TableFilterMode::Values, failure);
    QVERIFY(again);
    QTEST(filterText(again->filter), "filter");
  }

  void parametersLeaveTheFilter()
  {
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, {"От дата;=;15.01.2024;И", "Име;=;a;И", "Склад;=;S1|S2;"});
    TableFilterFailure failure;
    const auto result = buildTableFilter(grid, *fields_, TableFilterMode::Values, failure);
    QVERIFY(result);
    QCOMPARE(result->parameters, ParameterArray({{"FromDate", "20240115"}, {"Store", "S1|S2"}}));
    QCOMPARE(result->filter.size(), 1);

    StringTable back(tableFilterColumnCount);
    int row = 1;
    FillGridFromFilter(back, *fields_, TableFilterMode::Values, result->filter, result->parameters, row);
    QCOMPARE(row, 4);
    QCOMPARE(back.Cells(tfField, 2), QString("От дата"));
    QCOMPARE(back.Cells(tfValue, 3), QString("S1|S2"));
  }

  void whatIsNotValidIsTold_data()
  {
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("column");
    const auto add = [](const char* name, const QStringList& rows, const char* message, int column) {
      QTest::newRow(name) << rows << QString(message) << column;
    };
    add("operator", {"Име;~;a;"}, "Не валиден оператор", tfOperator);
    add("operator before field", {"Няма;~;a;"}, "Не валиден оператор", tfOperator);
    add("field", {"Няма;=;a;"}, "Не валидно поле !", tfField);
    add("conjunction", {"Име;=;a;", "Код;=;5;"}, "Не валиден съюз", tfConjunction);
    add("conjunction word", {"Име;=;a;AND", "Код;=;5;"}, "Не валиден съюз", tfConjunction);
    add("parameter", {"Склад;=;;"}, "Няма въведена стойност за логическото условие", tfValue);
    add("integer", {"Код;=;пет;"}, "Въведената стойност трябва да е целочислена", tfValue);
    add("one of several", {"Код;=;1|x;"}, "Въведената стойност трябва да е целочислена", tfValue);
    add("amount", {"Сума;=;a;"}, "Въведената стойност трябва да е дробно число", tfValue);
    add("date", {"Дата;=;1234567;"}, "Грешно въведена дата ", tfValue);
    add("option", {"Състояние;=;Стара;"}, "Няма такава стойност: Стара", tfValue);
  }
  void whatIsNotValidIsTold()
  {
    ScriptedPrompt prompt;
    QFETCH(QStringList, rows);
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, rows);
    TableFilterFailure failure;
    QVERIFY(!buildTableFilter(grid, *fields_, TableFilterMode::Values, failure));
    QFETCH(QString, message);
    QCOMPARE(prompt.messages, QStringList(message));
    QCOMPARE(prompt.offered, QList<PromptButton>{PromptButton::Ok});
    QTEST(failure.column, "column");
    QCOMPARE(failure.row, 1);
    QCOMPARE(tableTexts(grid), rows);
  }

  void percentIsAnOperator()
  {
    ScriptedPrompt prompt;
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, {"Код;%;5;"});
    int index = -1;
    QVERIFY(ValidateFilterRow(grid, descriptionRows(sampleDescriptions()), 1, index));
    QCOMPARE(index, 1);
  }

  void storedFiltersKeepTheirMacros_data()
  {
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("relative date") << "Дата;>=;-1m;" << "<#Param(-1m)#>" << "-1m";
    QTest::newRow("today") << "Дата;>=;<#Param(CURRENT_DATE)#>;" << "<#Param(CURRENT_DATE)#>"
                           << "<#Param(CURRENT_DATE)#>";
    QTest::newRow("date") << "Дата;>=;15.01.2024;" << "20240115" << "20240115";
    QTest::newRow("number") << "Код;=;<#Param(COMPANY_ID)#>;" << "<#Param(COMPANY_ID)#>" << "<#Param(COMPANY_ID)#>";
    QTest::newRow("text") << "Име;=;-1m;" << "-1m" << "-1m";
  }
  void storedFiltersKeepTheirMacros()
  {
    FixedClock clock(today_);
    QFETCH(QString, row);
    QFETCH(QString, value);
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, {row});
    TableFilterFailure failure;
    const auto result = buildTableFilter(grid, *fields_, TableFilterMode::Macros, failure);
    QVERIFY(result);
    QCOMPARE(result->filter.first().value, Variant(value));
    FillCellRowFromFilterLine(grid, *fields_, TableFilterMode::Macros, result->filter.first(), 1);
    QTEST(grid.Cells(tfValue, 1), "shown");
  }

  void aPresetBecomesRows_data()
  {
    QTest::addColumn<QStringList>("above");
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QStringList>("rows");
    const QStringList none;
    const QStringList one{"Код;=;1;"};
    QTest::newRow("value") << none << "ab" << QStringList{"Име;=;ab;"};
    QTest::newRow("operator") << one << ">=10" << QStringList{"Код;=;1;И", "Име;>=;10;"};
    QTest::newRow("pattern") << none << "ab*" << QStringList{"Име;Съдържа;ab%;"};
    QTest::newRow("range") << none << "a..b" << QStringList{"Име;>=;a;И", "Име;<=;b;"};
    QTest::newRow("range below rows") << one << "a..b" << QStringList{"Код;=;1;И", "Име;>=;a;И", "Име;<=;b;"};
    QTest::newRow("upper bound") << none << "..b" << QStringList{"Име;<=;b;"};
    QTest::newRow("lower bound") << none << "a.." << QStringList{"Име;>=;a;"};
    QTest::newRow("nothing typed") << none << "" << QStringList{"Име;;;"};
  }
  void aPresetBecomesRows()
  {
    QFETCH(QStringList, above);
    QFETCH(QString, criterion);
    StringTable grid(tableFilterColumnCount, 2);
    if (!above.isEmpty()) {
      fillTable(grid, above);
    }
    int row = int(above.size()) + 1;
    addCriterionRows(grid, "Име", criterion, row);
    QTEST(tableTexts(grid), "rows");
    QCOMPARE(row, grid.RowCount());
  }

  void aReportAsksForItsRequiredFields()
  {
    FixedClock clock(today_);
    LocalData.UserId = "иван";
    StringTable grid(tableFilterColumnCount);
    const FilterArray filter{{"T.Status", ">", "2", QString(), QString()}};
    QCOMPARE(fillReportRows(grid, *fields_, TableFilterMode::Values, filter), 5);
    QCOMPARE(tableTexts(grid), QStringList({"Име;=;иван;И", "Състояние;>;Анулирана;И", "Дата;=;09.03.2024;И",
                                            "От дата;=;09.03.2024;И", "Склад;=;;И"}));
    StringTable defaults(tableFilterColumnCount);
    fillReportRows(defaults, *fields_, TableFilterMode::Values, {});
    QCOMPARE(defaults.Cells(tfValue, 2), QString("Платена"));
  }

  void rowsWithoutAFieldShowTheirName()
  {
    StringTable grid(tableFilterColumnCount);
    int row = 1;
    FillGridFromFilter(grid, *fields_, TableFilterMode::Values, {{"Old.Field", "=", 1, "AND", QString()},
                                                                 {"T.Active", "=", 1, QString(), QString()}}, {}, row);
    QCOMPARE(tableTexts(grid), QStringList({"Old.Field;=;1;И", "Активен;=;Да;"}));
  }

  void laterRowsAreJoinedAsTheyAreEdited()
  {
    StringTable grid(tableFilterColumnCount);
    fillTable(grid, {"Име;=;a;", "Код;=;5;", "Сума;=;;"});
    joinRowAbove(grid, 2);
    QCOMPARE(grid.Cells(tfConjunction, 1), QString());
    joinRowAbove(grid, 3);
    QCOMPARE(grid.Cells(tfConjunction, 2), QString("И"));
  }

  void chosenRecordsBecomeOneValue()
  {
    TFieldSet code;
    code.FieldName = "Code";
    TRecordLine first{code}, second{code};
    first[0].Value = "A1";
    second[0].Value = 7;
    QCOMPARE(chosenFilterValue({first, second}, "Id,Code,Name", "X,Partner,Name", "Partner"), QString("A1|7"));
    QCOMPARE(chosenFilterValue({first}, "Id,Code,Name", "X,Partner,Name", "Other"), QString());
  }
};

static const RegisterTest<TableFilterTest> registerTableFilterTest;
#include "table_filter_test.moc"
