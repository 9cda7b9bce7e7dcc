#include <QRegularExpression>

#include "forms/default_values.h"
#include "records.h"
#include "scripted_ports.h"
#include "several_tests.h"

using namespace kalvor;
using kalvor::testing::fieldDef;

class DefaultValuesTest : public QObject {
  Q_OBJECT

  DefaultValueContext context()
  {
    return {&session_, &master_, [this](TField* field) { selected_.append(field->FieldName()); }};
  }

 private slots:
  void initTestCase()
  {
    session_.CompanyId = "7";
    session_.BGroupId = "G1";
    session_.UserId = "иван";
    session_.Currency_LCY = "BGN";
    master_.CreateDataSet({fieldDef("Id"), fieldDef("Rate", DataType::Float)});
    master_.AppendRecord({"M1", 1.95583});
    lines_.CreateDataSet({fieldDef("Id"), fieldDef("Text"), fieldDef("Number", DataType::Float),
                          fieldDef("Day", DataType::Date), fieldDef("At", DataType::Time),
                          fieldDef("When", DataType::DateTime)});
  }
  void init() { lines_.Append(); }
  void cleanup() { lines_.Cancel(); }

  void macros_data()
  {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Variant>("value");
    const QDate day(2024, 3, 9);
    const QTime time(14, 5, 6);
    const auto row = [](const char* field, const char* text, const Variant& value) {
      QTest::newRow(qPrintable(QString("%1 %2").arg(field, QString::fromUtf8(text))))
          << QString(field) << QString::fromUtf8(text) << value;
    };
    row("Text", "<#CURRENTCOMPANY#>", "7");
    row("Text", "<#CURRENTBGROUP#>", "G1");
    row("Text", "<#CURRENTUSER#>", "иван");
    row("Text", "<#LOCALCURRENCY#>", "BGN");
    row("Text", "<#MASTERID#>", "M1");
    row("Day", "<#CURRENTDATE#>", day);
    row("When", "<#CURRENTDATE#>", QDateTime(day, QTime(0, 0)));
    row("At", "<#CURRENTTIME#>", time);
    row("When", "<#CURRENTTIME#>", QDateTime(QDate(1899, 12, 30), time));
    row("When", "<#CURRENTDATETIME#>", QDateTime(day, time));
    row("Day", "<#CURRENTDATETIME#>", day);
    row("Number", "<#MasterField(Rate)#>", 1.95583);
    row("Number", "<#MasterField(None)#>", Variant());
    row("Text", "<#currentuser#>", "<#currentuser#>");
    row("Text", " <#CURRENTUSER#>", " <#CURRENTUSER#>");
    row("Number", "1,5", 1.5);
    row("Day", "15.01.2024", QDate(2024, 1, 15));
    row("Text", "   ", Variant());
  }
  void macros()
  {
    QFETCH(QString, field);
    QFETCH(QString, text);
    QFETCH(Variant, value);
    TField* target = lines_.FieldByName(field);
    QCOMPARE(ParseDefaultValue(text, target, context()), value);
    QCOMPARE(target->Value(), value);
  }

  void identifiersAreNew()
  {
    const QString id = ParseDefaultValue("<#AUTOGENERATE_ID#>", lines_.FieldByName(u"Id"), context()).toString();
    QVERIFY2(QRegularExpression("^[0-9A-F]{32}$").match(id).hasMatch(), qPrintable(id));
    GenerateID(lines_);
    QVERIFY(lines_.FieldByName(u"Id")->AsString() != id);
  }

  void selectorsAreCalled()
  {
    QVERIFY(ParseDefaultValue("<#CALLSELECTOR#>", lines_.FieldByName(u"Text"), context()).isNull());
    QCOMPARE(std::exchange(selected_, {}), QStringList{"Text"});
  }

  void textsThatDoNotConvertAreRefused()
  {
    QVERIFY_EXCEPTION_THROWN(ParseDefaultValue("abc", lines_.FieldByName(u"Number"), context()), DataError);
    QVERIFY(lines_.FieldByName(u"Number")->IsNull());
  }

  void bothSourcesInTheirOrder()
  {
    const auto description = [](const QString& name, const Variant& defaultValue) {
      VariantArray row(19);
      row[0] = name;
      row[14] = defaultValue;
      return Variant(row);
    };
    const VariantArray rows{description("Text", "от описанието"), description("Number", "5"),
                            description("Missing", "x"), Variant(), description("Id", " ")};
    const TDefaultValues caller{
        {"Number", 7, 1}, {"Text", "за главния", 0}, {"Missing", 1, 1}, {"Id", "<#MASTERID#>", 1}};
    QStringList parsed;
    const auto parse = [&](const QString& text, TField* field) {
      parsed.append(field->FieldName());
      return ParseDefaultValue(text, field, context());
    };
    applyDefaultValues(lines_, 1, rows, caller, parse, context());
    QCOMPARE(parsed, (QStringList{"Text", "Number"}));
    QCOMPARE(lines_.FieldByName(u"Text")->AsString(), QString("от описанието"));
    QCOMPARE(lines_.FieldByName(u"Number")->AsFloat(), 7.0);
    QCOMPARE(lines_.FieldByName(u"Id")->AsString(), QString("M1"));
    QCOMPARE(defaultValueText(rows, 1), QString("5"));
    QCOMPARE(defaultValueText(rows, 5), QString());
    QCOMPARE(defaultValueText(rows, -1), QString());
  }

 private:
  testing::FixedClock clock_{QDateTime(QDate(2024, 3, 9), QTime(14, 5, 6))};
  TLocalData session_;
  TClientDataSet master_, lines_;
  QStringList selected_;
};

static const testing::RegisterTest<DefaultValuesTest> registerDefaultValuesTest;
#include "default_values_test.moc"
