// Arithmetic of prices: exact, half away from zero, refused beyond counting.
#include "server/pricing/exact_amount.h"
#include "several_tests.h"

using namespace kalvor::server;

class ExactAmountTest : public QObject {
  Q_OBJECT

 private slots:
  void rounds_data()
  {
    QTest::addColumn<qint64>("millionths");
    QTest::addColumn<qint64>("times");
    QTest::addColumn<qint64>("over");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<double>("result");
    const auto row = [](const char* name, qint64 millionths, qint64 times, qint64 over, int decimals, double result) {
      QTest::newRow(name) << millionths << times << over << decimals << result;
    };
    row("as it is", 1'234'567, 1, 1, 6, 1.234567);
    row("half up", 1'005'000, 1, 1, 2, 1.01);
    row("half down when negative", -1'005'000, 1, 1, 2, -1.01);
    row("just below half", 1'004'999, 1, 1, 2, 1.0);
    row("third", 1'000'000, 1, 3, 5, 0.33333);
    row("two thirds", 2'000'000, 1, 3, 5, 0.66667);
    row("negative divisor", 1'000'000, 1, -4, 2, -0.25);
    row("zero", 0, 7, 3, 5, 0);
    row("no decimals", 2'500'000, 1, 1, 0, 3);
    row("not rounded", 1'000'000, 1, 8, -1, 0.125);
    row("more decimals than are kept", 1'000'000, 1, 3, 30, 0.333333333);
  }
  void rounds()
  {
    QFETCH(qint64, millionths);
    QFETCH(qint64, times);
    QFETCH(qint64, over);
    QFETCH(int, decimals);
    QTEST(*ExactAmount(millionths).multiply(times, over).rounded(decimals), "result");
  }

  void thereAndBackLosesNothing()
  {
    ExactAmount amount(999'990);
    for (const qint64 factor : {119'000'000LL, 1'955'830LL, 7LL, 333'333LL}) {
      amount.multiply(factor, 100'000'000);
      amount.multiply(100'000'000, factor);
    }
    QCOMPARE(amount.roundedMillionths(6), std::optional<qint64>(999'990));
  }

  void beyondCounting()
  {
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    QCOMPARE(ExactAmount(largest).multiply(largest, 1).multiply(largest, 1).rounded(2), std::nullopt);
    QCOMPARE(ExactAmount(largest).multiply(3, 1).roundedMillionths(6), std::nullopt);
    QCOMPARE(ExactAmount(largest).roundedMillionths(6), std::optional(largest));
  }
};

static kalvor::testing::RegisterTest<ExactAmountTest> exactAmountTest;
#include "exact_amount_test.moc"
