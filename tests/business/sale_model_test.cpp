// Random lines and documents against the decimal model in sale_model.py.
#include <QProcess>

#include "business/sale_line_changes.h"
#include "business/vat_totals.h"
#include "sale_document.h"
#include "session/local_data.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

constexpr int lineCount = 100'000;
constexpr int documentCount = 2'000;
constexpr int seed = 20'260'101;

const char* const results[] = {"LineDiscountAmount", "TotalPrice",     "TotalValue",   "VATValue",
                               "TotalVAT",           "TotalValue_LCY", "VatValue_LCY", "TotalVAT_LCY",
                               "UnitCost_ACY",       "UnitCost_LCY"};
enum Input : int { Includes = 1, Foreign, Factor, Percent, Quantity, Price, Discount, FirstResult };

class Differences {
 public:
  void compare(const QString& what, double got, const QByteArray& expected, const QByteArray& row)
  {
    ++compared_;
    if (got == expected.toDouble())
      return;
    if (++different_ <= 5)
      qWarning("%s is %.10g, not %s: %s", qPrintable(what), got, expected.constData(), row.constData());
  }
  int different() const { return different_; }
  int compared() const { return compared_; }

 private:
  int compared_ = 0, different_ = 0;
};

}  // namespace

class SaleModelTest : public QObject {
  Q_OBJECT
 private slots:
  void initTestCase()
  {
    LocalData = {};
    LocalData.PrecisionAmount = 2;
    LocalData.PrecisionPrice = 5;
    QProcess model;
    model.start(QStringLiteral("python3"), {QStringLiteral(KALVOR_SOURCE_DIR "/tests/business/sale_model.py"),
                                            QString::number(lineCount), QString::number(documentCount),
                                            QString::number(seed)});
    QVERIFY2(model.waitForFinished(120'000) && model.exitCode() == 0, model.readAllStandardError().constData());
    rows_ = model.readAllStandardOutput().split('\n');
    QCOMPARE(rows_.size(), lineCount + documentCount + 1);
  }

  void lines()
  {
    SaleDocument document;
    document.addLine({});
    document.editLine();
    Differences differences;
    for (const QByteArray& row : rows_) {
      const QList<QByteArray> cells = row.split(';');
      if (cells[0] != "L")
        continue;
      SaleDocument::set(document.header, {{"PriceIncludingVAT", cells[Includes].toInt()},
                                          {"Currency_Id", cells[Foreign] == "1" ? QVariant(QStringLiteral("EUR")) : QVariant()},
                                          {"CurrencyFactor", cells[Factor].toDouble()}});
      SaleDocument::set(document.lines, {{"VATPercent", cells[Percent].toDouble()}, {"UnitPrice", cells[Price].toDouble()},
                                         {"LineDiscount", cells[Discount].toDouble()}, {"InvDiscAmount", 7},
                                         {"Quantity", cells[Quantity].toDouble()}});
      SrvSaleQuantityOnChange(&document.header, &document.lines, document.guard, false, false);
      for (size_t i = 0; i < std::size(results); ++i)
        differences.compare(QLatin1String(results[i]), document.number(results[i]), cells[FirstResult + int(i)], row);
    }
    QCOMPARE(differences.compared(), lineCount * int(std::size(results)));
    QCOMPARE(differences.different(), 0);
  }

  void documents()
  {
    const char* const names[] = {"TOTALVALUE", "VATVALUE", "TOTALVAT", "CRN_TOTALVALUE", "CRN_VATVALUE", "CRN_TOTALVAT"};
    Differences differences;
    for (const QByteArray& row : rows_) {
      const QList<QByteArray> cells = row.split(';');
      if (cells[0] != "D")
        continue;
      TVATTotals totals(2);
      for (const QByteArray& line : cells[1].split(' ')) {
        const QList<QByteArray> parts = line.split(':');
        totals.AddVATGroups(QString::fromLatin1(parts[0]), parts[1].toDouble(), parts[2].toDouble(), parts[3].toDouble());
      }
      for (size_t i = 0; i < std::size(names); ++i)
        differences.compare(QLatin1String(names[i]), std::round(totals.ValueByName(QLatin1String(names[i])) * 1e9) / 1e9,
                            cells[2 + int(i)], row);
    }
    QCOMPARE(differences.compared(), documentCount * int(std::size(names)));
    QCOMPARE(differences.different(), 0);
  }

 private:
  QList<QByteArray> rows_;
};

static RegisterTest<SaleModelTest> registered;
#include "sale_model_test.moc"
