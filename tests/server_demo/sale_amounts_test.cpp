#include "server/load/sale_amounts.h"

#include "several_tests.h"

using namespace kalvor::server;

namespace {

constexpr qint64 one = 1'000'000;

qint64 millionths(double value) { return qint64(value * one + (value < 0 ? -0.5 : 0.5)); }

}  // namespace

class SaleAmountsTest : public QObject {
  Q_OBJECT

 private slots:
  void rounding()
  {
    QCOMPARE(roundUp(0, -2.5L), -3.0);
    QCOMPARE(roundUp(0, 2.4999L), 2.0);
    QCOMPARE(roundUp(2, 20.2498L), 20.25);
    QCOMPARE(roundUp(-1, 2.4999L), 2.4999);
    QCOMPARE(roundUp(2, 1e18L), 1e18);
  }

  void lines_data()
  {
    QTest::addColumn<SaleLineInput>("line");
    QTest::addColumn<double>("totalPrice");
    QTest::addColumn<double>("totalValue");
    QTest::addColumn<double>("vat");
    QTest::addColumn<double>("valueLcy");
    const auto line = [](double quantity, double price, double discount, double vat, bool included, double factor) {
      return SaleLineInput{millionths(quantity), millionths(price),  millionths(discount), millionths(vat),
                           millionths(factor),   factor != 1, included};
    };
    QTest::newRow("half a cent up") << line(2, 10.125, 0, 20, false, 1) << 20.25 << 20.25 << 4.05 << 20.25;
    QTest::newRow("fourth decimal") << line(2, 10.1249, 0, 20, false, 1) << 20.25 << 20.25 << 4.05 << 20.25;
    QTest::newRow("down") << line(2, 10.1224, 0, 20, false, 1) << 20.24 << 20.24 << 4.05 << 20.24;
    QTest::newRow("VAT included, in leva") << line(1, 120, 0, 20, true, 1.95583) << 120.0 << 100.0 << 20.0 << 195.58;
    QTest::newRow("discount") << line(3, 50, 10, 20, false, 1) << 135.0 << 135.0 << 27.0 << 135.0;
    QTest::newRow("all of it discounted") << line(3, 50, 100, 20, false, 1) << 0.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("returned") << line(-3, 9.99, 0, 9, false, 1) << -29.97 << -29.97 << -2.7 << -29.97;
    QTest::newRow("free") << line(5, 0, 0, 20, false, 1) << 0.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("nothing") << line(0, 5, 10, 20, false, 1) << 0.0 << 0.0 << 0.0 << 0.0;
  }

  void lines()
  {
    QFETCH(SaleLineInput, line);
    const SaleLineAmounts amounts = saleLineAmounts(line, {});
    const auto expected = [](const char* column) {
      return millionths(*static_cast<double*>(QTest::qData(column, qMetaTypeId<double>())));
    };
    QCOMPARE(amounts.totalPrice, expected("totalPrice"));
    QCOMPARE(amounts.totalValue, expected("totalValue"));
    QCOMPARE(amounts.vatValue, expected("vat"));
    QCOMPARE(amounts.totalVat, amounts.totalValue + amounts.vatValue);
    QCOMPARE(amounts.totalValueLcy, expected("valueLcy"));
  }

  void unitCostFollowsTheDiscount()
  {
    SaleLineInput line{3 * one, 50 * one, 10 * one, 20 * one, millionths(1.95583), true, false};
    const SaleLineAmounts amounts = saleLineAmounts(line, {});
    QCOMPARE(amounts.lineDiscountAmount, 15 * one);
    QCOMPARE(amounts.unitCost, 45 * one);
    QCOMPARE(amounts.unitCostLcy, millionths(88.01235));
  }

  void vatIsRoundedOnceAGroup()
  {
    SaleTotalsBuilder sums;
    sums.add(20 * one, millionths(0.03), millionths(0.03));
    sums.add(20 * one, millionths(0.03), millionths(0.03));
    QCOMPARE(sums.totals({}).vatValue, millionths(0.01));
    sums.add(9 * one, millionths(1), millionths(1));
    QCOMPARE(sums.totals({}).vatValue, millionths(0.10));
    QCOMPARE(sums.totals({}).totalVat, millionths(1.16));
  }
};

static kalvor::testing::RegisterTest<SaleAmountsTest> saleAmountsTest;
#include "sale_amounts_test.moc"
