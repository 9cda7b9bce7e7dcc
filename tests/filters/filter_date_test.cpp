#include "filters/filter_expression.h"
#include "scripted_ports.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;

class FilterDateTest : public QObject {
  Q_OBJECT
 private slots:
  void shorthand_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("date");
    const auto row = [](const char* text, const char* date) { QTest::newRow(text) << QString(text) << QString(date); };
    row("5", "20240305");
    row("15", "20240315");
    row("1501", "20240115");
    row("15.1", "20240115");
    row("1/2", "20240201");
    row("15/01/2024", "20240115");
    row("5-1-24", "240105");
    row("15.01.2024 14:30", "20240115");
    row("20240115", "20240115");
    row("'20240115'", "20240115");
    row("150124", "240115");
    row("290224", "240229");
    row("1.2.00", "000201");
    row(" 15 ", "20240315");
    row("15012024 10:00", "20240115");
    row("151", "2024115");
    row("1234567", "");
    row("12345", "");
    row("2024-01-15", "");
    row("15.01.", "");
    row("15.1.202", "");
    row("15.123", "");
    row("", "");
    row("+3d", "20240312");
    row("-1м", "20240209");
  }
  void shorthand()
  {
    QFETCH(QString, text);
    QTEST(GenerateDate(text, true), "date");
  }

  void impossibleDatesAreRaised_data()
  {
    QTest::addColumn<QString>("text");
    for (const char* text : {"31.02.2024", "32", "1513", "15.", "20241301", "290223", "ab", "00"})
      QTest::newRow(text) << QString(text);
  }
  void impossibleDatesAreRaised()
  {
    QFETCH(QString, text);
    try {
      GenerateDate(text, true);
      QFAIL("nothing was raised");
    } catch (const TELException& error) {
      QCOMPARE(error.procedure(), QString("uKalvorCommonUtils.GenerateDate"));
    }
  }

  void intervalsStayTextUnlessConverted()
  {
    QCOMPARE(GenerateDate("+3d", false), QString("+3d"));
    QCOMPARE(GenerateDate("15", false), QString("20240315"));
  }

  void intervals_data()
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("date");
    const auto row = [](const char* text, const char* date) { QTest::newRow(text) << QString(text) << QString(date); };
    row("0d", "20240309");
    row("1D", "20240310");
    row("-9д", "20240229");
    row("+1Д", "20240310");
    row("-d10", "20240228");
    row("1m", "20240409");
    row("12М", "20250309");
    row("-1Y", "20230309");
    row("2г", "20260309");
    row("1Г", "20250309");
    row("9999999d", "");
    row("99999999999999999999d", "");
    row("3", "");
    row("d", "");
    row("3dd", "");
    row("3d4m", "");
    row("3-d", "");
    row(" 3d", "");
    row("3w", "");
    row("", "");
  }
  void intervals()
  {
    QFETCH(QString, text);
    QFETCH(QString, date);
    QString result;
    QCOMPARE(GenerateIntervalData(text, result), date.isEmpty() ? -1 : 0);
    QCOMPARE(result, date);
    if (date.isEmpty())
      QVERIFY_EXCEPTION_THROWN(ConvertIntervalToDate(text), DataError);
    else
      QCOMPARE(ConvertIntervalToDate(text).toString("yyyyMMdd"), date);
  }

  void monthsEndWhereTheyEnd()
  {
    testing::FixedClock clock(QDateTime(QDate(2024, 1, 31), QTime(12, 0)));
    QString date;
    QCOMPARE(GenerateIntervalData("+1m", date), 0);
    QCOMPARE(date, QString("20240229"));
  }

 private:
  testing::FixedClock clock_{QDateTime(QDate(2024, 3, 9), QTime(12, 0))};
};

static const testing::RegisterTest<FilterDateTest> registerFilterDateTest;
#include "filter_date_test.moc"
