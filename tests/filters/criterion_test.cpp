#include "data/regional.h"
#include "filter_text.h"
#include "filters/filter_expression.h"
#include "forms/messages.h"
#include "records.h"
#include "scripted_ports.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::filterText;

class CriterionTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    using kalvor::testing::fieldDef;
    dataSet_.CreateDataSet({fieldDef("Name"), fieldDef("Code", DataType::Integer), fieldDef("Big", DataType::LargeInt),
                            fieldDef("DocDate", DataType::DateTime), fieldDef("Amount", DataType::Float),
                            fieldDef("Price", DataType::Currency), fieldDef("At", DataType::Time),
                            fieldDef("Note", DataType::Memo)});
  }

  void criterionToRows_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QString>("rows");
    const auto row = [](const char* field, const char* criterion, const char* rows) {
      QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(field, QString::fromUtf8(criterion))))
          << QString(field) << QString::fromUtf8(criterion) << QString::fromUtf8(rows);
    };
    row("Name", "ab*", "(Name;LIKE;ab%;)");
    row("Name", "a*b*", "(Name;LIKE;a%b*;)");
    row("Name", "a%b", "(Name;LIKE;a%b;)");
    row("Name", "=ab*", "(Name;=;ab*;)");
    row("Name", "a*|b*", "(Name;LIKE;a%;OR)");
    row("Name", "иван|петър&x", "(Name;=;иван;OR) (Name;=;петър;AND) (Name;=;x;)");
    row("Name", "=", "(Name;=;;OR;() (Name;is;null;;))");
    row("Name", "", "(Name;=;;OR;() (Name;is;null;;))");
    row("Name", "<>", "(Name;<>;;AND;() (Name;is not ;null;;))");
    row("Name", ">=", "(Name;>=;;AND;() (Name;is not ;null;;))");
    row("Name", "a||b", "(Name;=;a;OR) (Name;=;;OR;() (Name;is;null;OR;))");
    row("Name", "x=y=z", "(Name;=;x;)");
    row("Name", "a>b|c", "(Name;>;a;) (Name;>;a;)");
    row("Name", "a..c", "(Name;>=;a;AND) (Name;<=;c;)");
    row("Name", "..c", "(Name;>=;;AND) (Name;<=;c;)");
    row("Name", "a.b", "(Name;=;a.b;)");
    row("Code", "1|3|5", "(Code;=;1;OR) (Code;=;3;OR) (Code;=;5;)");
    row("Code", ">=10", "(Code;>=;10;)");
    row("Code", "<>-7", "(Code;<>;-7;)");
    row("Code", "..5", "(Code;>=;0;AND) (Code;<=;5;)");
    row("Code", "5..", "(Code;>=;5;AND) (Code;<=;5;)");
    row("Code", "1||3", "(Code;=;1;OR) (Code;=;1;OR) (Code;=;3;)");
    row("Code", "=", "(Code;=;0;)");
    row("Big", "5000000000", "(Big;=;5000000000;)");
    row("DocDate", "01.01.2024..31.01.2024", "(DocDate;>=;20240101;AND) (DocDate;<=;20240131;)");
    row("DocDate", "01.01.2024 .. 31.01.2024", "(DocDate;>=;20240101;AND) (DocDate;<=;20240131;)");
    row("DocDate", "-1д|15", "(DocDate;=;20240308;OR) (DocDate;=;20240315;)");
    row("DocDate", "..15.1", "(DocDate;<=;20240115;)");
    row("Amount", "1,5|2,5", "(Amount;=;1.5;OR) (Amount;=;2.5;)");
    row("Amount", ">1000000", "(Amount;>;1000000;)");
    row("Amount", "0,1..0,3", "(Amount;>=;0.1;AND) (Amount;<=;0.3;)");
    row("Price", "<=-12,30", "(Price;<=;-12.3;)");
    row("At", ">=9:05", "(At;>=;09:05:00;)");
    row("Note", "a*", "(Note;LIKE;a%;)");
  }
  void criterionToRows()
  {
    QFETCH(QString, field);
    QFETCH(QString, criterion);
    FilterArray filter;
    QVERIFY(BuildFilter(dataSet_.FieldByName(field), criterion, "other", filter));
    QTEST(filterText(filter), "rows");
    QCOMPARE(prompt_.takeMessages(), QStringList());
  }

  void unreadableValuesAreTold_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QString>("message");
    QTest::newRow("integer") << "Code" << "1|x" << _err_NotIntegerValue;
    QTest::newRow("integer too large") << "Code" << "5000000000" << _err_NotIntegerValue;
    QTest::newRow("integer with fraction") << "Code" << "1,5" << _err_NotIntegerValue;
    QTest::newRow("left integer") << "Code" << "a..5" << _err_NotIntegerValue;
    QTest::newRow("float with the other sign") << "Amount" << "1.5" << _err_NotFloatValue;
    QTest::newRow("empty float") << "Amount" << "=" << _err_NotFloatValue;
    QTest::newRow("date") << "DocDate" << "1234567" << _err_NotValidDate;
    QTest::newRow("second date") << "DocDate" << "15|2024-01-15x" << _err_NotValidDate;
  }
  void unreadableValuesAreTold()
  {
    QFETCH(QString, field);
    QFETCH(QString, criterion);
    QFETCH(QString, message);
    const FilterArray before{{"Kept", "=", "1", "", ""}};
    FilterArray filter = before;
    QVERIFY(!BuildFilter(dataSet_.FieldByName(field), criterion, "", filter));
    QCOMPARE(prompt_.takeMessages(), QStringList{message});
    QCOMPARE(filter, before);
  }

  void impossibleValuesAreRaised_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("criterion");
    QTest::newRow("empty date") << "DocDate" << "=";
    QTest::newRow("empty date with operator") << "DocDate" << ">=";
    QTest::newRow("impossible date") << "DocDate" << "31.02.2024";
    QTest::newRow("empty time") << "At" << "=";
    QTest::newRow("time") << "At" << "25:00";
  }
  void impossibleValuesAreRaised()
  {
    QFETCH(QString, field);
    QFETCH(QString, criterion);
    FilterArray filter;
    try {
      BuildFilter(dataSet_.FieldByName(field), criterion, "", filter);
      QFAIL("nothing was raised");
    } catch (const TELException& error) {
      QCOMPARE(error.procedure(), QString("uKalvorCommonUtils.BuildFilter"));
    }
    QCOMPARE(filter, FilterArray());
  }

  void namesOfFields()
  {
    FilterArray filter;
    QVERIFY(BuildFilter(nullptr, "x", "N_Item.Code", filter));
    QCOMPARE(filterText(filter), QString("(N_Item.Code;=;x;)"));
    TField* field = dataSet_.FieldByName(u"Note");
    field->Origin = "N_Item.Note";
    QVERIFY(BuildFilter(field, "x", "", filter));
    QCOMPARE(filterText(filter), QString("(N_Item.Note;=;x;)"));
    field->Origin.clear();
  }

  void criterionParts_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("right");
    QTest::newRow("first operator counts") << "a<=b..c" << "a" << "<=" << "b..c";
    QTest::newRow("different") << "<>5" << "" << "<>" << "5";
    QTest::newRow("greater") << "1>2" << "1" << ">" << "2";
    QTest::newRow("=> is two") << "=>5" << "" << "=" << ">5";
    QTest::newRow("three points") << "1...3" << "1" << ".." << ".3";
    QTest::newRow("pattern") << "*a*" << "" << "*" << "%a*";
    QTest::newRow("percent first") << "%a*" << "" << "*" << "%a%";
    QTest::newRow("last point") << "5." << "" << "=" << "5.";
  }
  void criterionParts()
  {
    QFETCH(QString, text);
    QString left = "x", right = "x", op = "x";
    PreparateFilterString(text, left, right, op);
    QTEST(left, "left");
    QTEST(op, "op");
    QTEST(right, "right");
  }

  void decimalSeparatorIsTheUsers()
  {
    regionalFormat().decimalSeparator = u'.';
    QList<CriterionValue> values;
    Variant first;
    const bool ok = ConvertFldValues(DataType::Bcd, "0.5", "1.25", values, first);
    regionalFormat() = RegionalFormat();
    QVERIFY(ok);
    QCOMPARE(first.toString(), QString("0.5"));
    QCOMPARE(values.at(0).text.toString(), QString("1.25"));
  }

  void classesOfSigns()
  {
    QCOMPARE(SetSimbol("="), sbEqual);
    QCOMPARE(SetSimbol("<"), sbLess);
    QCOMPARE(SetSimbol(">"), sbGreater);
    for (const char* other : {".", "", "<=", "a"})
      QCOMPARE(SetSimbol(other), sbNotSimbol);
    QCOMPARE(int(sbNotSimbol), 7);
  }

 private:
  testing::ScriptedPrompt prompt_;
  testing::FixedClock clock_{QDateTime(QDate(2024, 3, 9), QTime(12, 0))};
  TClientDataSet dataSet_;
};

static const testing::RegisterTest<CriterionTest> registerCriterionTest;
#include "criterion_test.moc"
