// Values by data type, and records found by the text of a field.
#include "fake_form.h"
#include "registry/selector_values.h"
#include "several_tests.h"

namespace kalvor::testing {

class SelectorValuesTest : public QObject {
  Q_OBJECT
 private slots:
  void byType_data()
  {
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char* name, const QVariant& value, DataType type, const QVariant& expected) {
      QTest::newRow(name) << value << int(type) << expected;
    };
    const QDateTime day(QDate(2024, 1, 31), QTime(0, 0));
    row("number in the file's form", QStringLiteral("1 234.5"), DataType::Float, 1234.5);
    row("fixed decimal", QStringLiteral("-0.25"), DataType::Bcd, -0.25);
    row("a number stays", 3, DataType::Float, 3);
    row("text stays", QStringLiteral("1.5"), DataType::String, QStringLiteral("1.5"));
    row("integer stays", QStringLiteral("15"), DataType::Integer, QStringLiteral("15"));
    row("currency stays", QStringLiteral("1.5"), DataType::Currency, QStringLiteral("1.5"));
    row("date", QStringLiteral("01/31/2024"), DataType::Date, day);
    row("date and time", QStringLiteral("01/31/2024 08:05"), DataType::DateTime,
        QDateTime(QDate(2024, 1, 31), QTime(8, 5)));
    row("two-digit year", QStringLiteral("1/31/24"), DataType::TimeStamp, day);
    row("time", QStringLiteral("08:05:30"), DataType::Time, QDateTime(QDate(1899, 12, 30), QTime(8, 5, 30)));
    row("spreadsheet day", 45322.5, DataType::DateTime, QDateTime(QDate(2024, 1, 31), QTime(12, 0)));
    row("null date", QVariant(), DataType::Date, QVariant());
    row("null number", QVariant(), DataType::Float, QVariant());
  }
  void byType()
  {
    QFETCH(QVariant, value);
    QFETCH(int, type);
    TFormatSettings settings;
    settings.DecimalSeparator = u'.';
    settings.DateSeparator = u'/';
    settings.ShortDateFormat = QStringLiteral("mm/dd/yyyy");
    QTEST(ParseAsFieldType(value, DataType(type), settings), "expected");
  }

  void unreadable()
  {
    const TFormatSettings settings;
    QVERIFY_EXCEPTION_THROWN(ParseAsFieldType(QStringLiteral("1.5"), DataType::Float, settings), DataError);
    QVERIFY_EXCEPTION_THROWN(ParseAsFieldType(QStringLiteral("31.02.2024"), DataType::Date, settings), DataError);
  }

  void locatesByExactText()
  {
    TClientDataSet dataSet;
    dataSet.CreateDataSet({fieldDef(QStringLiteral("Code")), fieldDef(QStringLiteral("No"), DataType::Integer)});
    for (const char* code : {"a", "A ", "A", "A"})
      dataSet.AppendRecord({QString::fromUtf8(code), dataSet.RecordCount()});
    QVERIFY(OurLocate(&dataSet, QStringLiteral("Code"), QStringLiteral("A")));
    QCOMPARE(dataSet.RecNo(), 3);
    QVERIFY(!OurLocate(&dataSet, QStringLiteral("Code"), QStringLiteral("B")));
    QVERIFY(!dataSet.ControlsDisabled());
    QVERIFY_EXCEPTION_THROWN(OurLocate(&dataSet, QStringLiteral("Nil"), QStringLiteral("A")), DataError);
  }
};

const RegisterTest<SelectorValuesTest> selectorValuesTest;

}  // namespace kalvor::testing

#include "values_test.moc"
