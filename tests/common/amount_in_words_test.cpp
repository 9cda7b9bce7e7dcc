#include <cmath>
#include <limits>

#include "common/amount_in_words.h"
#include "common/rounding.h"
#include "data/data_error.h"
#include "several_tests.h"

using namespace kalvor;

namespace {

// Reads an amount back: knows the words and how Bulgarian joins them, nothing of how they were put together.
class WordReader {
 public:
  // -1 for a text that no Bulgarian would write.
  static qint64 read(const QString& units)
  {
    WordReader reader;
    for (const QString& word : units.simplified().split(' '))
      if (!reader.take(word))
        return -1;
    return reader.closeGroup(0, Masculine) ? reader.total_ : -1;
  }

 private:
  enum Form { Any, Masculine, Feminine };
  struct Word {
    int value;
    int rank;  // hundreds 3, tens 2, below twenty 1; ten to nineteen leave no room for units
    Form form = Any;
  };
  struct Scale {
    qint64 size;
    bool one;  // the form after one
    Form form;
  };

  static const QHash<QString, Word>& words()
  {
    static const QHash<QString, Word> all = [] {
      QHash<QString, Word> made{{"един", {1, 1, Masculine}}, {"една", {1, 1, Feminine}}, {"два", {2, 1, Masculine}},
                                {"две", {2, 1, Feminine}},   {"десет", {10, 1}},          {"единадесет", {11, 1}},
                                {"сто", {100, 3}},           {"двеста", {200, 3}},        {"триста", {300, 3}},
                                {"двадесет", {20, 2}},       {"тридесет", {30, 2}},       {"дванадесет", {12, 1}},
                                {"тринадесет", {13, 1}}};
      const QStringList digits{"три", "четири", "пет", "шест", "седем", "осем", "девет"};
      for (int d = 3; d <= 9; ++d) {
        made.insert(digits[d - 3], {d, 1});
        made.insert(digits[d - 3] + "надесет", {10 + d, 1});
        made.insert(digits[d - 3] + "десет", {10 * d, 2});
        if (d > 3)
          made.insert(digits[d - 3] + "стотин", {100 * d, 3});
      }
      return made;
    }();
    return all;
  }
  static const QHash<QString, Scale>& scales()
  {
    static const QHash<QString, Scale> all{
        {"хиляда", {1000, true, Feminine}},           {"хиляди", {1000, false, Feminine}},
        {"милион", {1000000, true, Masculine}},       {"милиона", {1000000, false, Masculine}},
        {"милиард", {1000000000, true, Masculine}},   {"милиарда", {1000000000, false, Masculine}},
        {"трилион", {1000000000000, true, Masculine}}, {"трилиона", {1000000000000, false, Masculine}}};
    return all;
  }

  bool take(const QString& word)
  {
    if (word == QStringLiteral("и")) {
      joins_.append(group_.size());
      return true;
    }
    if (const auto scale = scales().constFind(word); scale != scales().constEnd()) {
      if (scale->size == 1000 && scale->one)  // a thousand stands for itself
        group_.append({1, 1, Feminine});
      return closeGroup(scale->size, scale->form) && (lastCount_ == 1) == scale->one;
    }
    if (word == QStringLiteral("нула"))
      return total_ == 0 && group_.isEmpty();
    const auto known = words().constFind(word);
    if (known == words().constEnd())
      return false;
    if (!group_.isEmpty() && (group_.last().rank <= known->rank || (group_.last().rank == 2 && known->value > 9)))
      return false;
    group_.append(*known);
    return true;
  }

  // The last of several words is joined by "и"; after thousands also a single one, unless it is eleven to nineteen.
  bool closeGroup(qint64 size, Form form)
  {
    const auto aTeen = [](const Word& word) { return word.value > 10 && word.value < 20; };
    const bool single = size == 0 && group_.size() == 1 && total_ > 0 && !aTeen(group_.first());
    const bool joined = group_.size() > 1 || single;
    if (joins_ != (joined ? QList<qsizetype>{group_.size() - 1} : QList<qsizetype>()))
      return false;
    lastCount_ = 0;
    for (const Word& word : std::as_const(group_)) {
      if (word.form != Any && word.form != form && word.value < 10)
        return false;
      lastCount_ += word.value;
    }
    if (size > 0 && (lastCount_ == 0 || size >= lastSize_))
      return false;
    lastSize_ = size;
    total_ += lastCount_ * qMax<qint64>(size, 1);
    group_.clear();
    joins_.clear();
    return true;
  }

  QList<Word> group_;
  QList<qsizetype> joins_;
  qint64 total_ = 0, lastCount_ = 0, lastSize_ = std::numeric_limits<qint64>::max();
};

qint64 unitsReadBack(double amount)
{
  const QString ending = QStringLiteral("лв и .00");
  const QString text = NumberToText(amount, QStringLiteral("лв"));
  return text.endsWith(ending) ? WordReader::read(text.chopped(ending.size())) : -2;
}

}  // namespace

class AmountInWordsTest : public QObject {
  Q_OBJECT
 private slots:
  void amounts_data()
  {
    QTest::addColumn<double>("amount");
    QTest::addColumn<QString>("currency");
    QTest::addColumn<QString>("text");
    const std::pair<double, const char*> known[] = {
        {0, "нула лева и .00"},
        {0.5, "нула лева и .50"},
        {1, "един лев и .00"},
        {2, "два лева и .00"},
        {15, "петнадесет лева и .00"},
        {21, "двадесет и един лева и .00"},
        {100, "сто  лева и .00"},
        {105, "сто  и пет лева и .00"},
        {110, "сто  и десет лева и .00"},
        {120, "сто и двадесет лева и .00"},
        {125, "сто двадесет и пет лева и .00"},
        {400, "четиристотин  лева и .00"},
        {1005, "хиляда и пет лева и .00"},
        {1012, "хиляда дванадесет лева и .00"},
        {1234.56, "хиляда двеста тридесет и четири лева и .56"},
        {2000, "две хиляди лева и .00"},
        {2000000, "два милиона лева и .00"},
        {-3.456, "минус три лева и .46"},
        {0.999, "един лев и .00"},
        {2147483647.99, "два милиарда сто четиридесет и седем милиона четиристотин осемдесет и три хиляди "
                        "шестстотин четиридесет и седем лева и .99"},
        {2147483648.0, "два милиарда сто четиридесет и седем милиона четиристотин осемдесет и три хиляди "
                       "шестстотин четиридесет и осем лева и .00"},
        {1000000000000.5, "един трилион лева и .50"},
        {1e15, "1000000000000000 лева и .00"},
        {1e15 + 0.75, "1000000000000000 лева и .75"},
    };
    for (const auto& [amount, text] : known)
      QTest::addRow("%.2f", amount) << amount << "" << text;
    QTest::newRow("EUR") << 1.0 << "EUR" << "един EUR и .00";
  }
  void amounts()
  {
    QFETCH(double, amount);
    QFETCH(QString, currency);
    QTEST(NumberToText(amount, currency), "text");
  }

  void everyAmountReadsBack()
  {
    for (int amount = 0; amount <= 1000000; ++amount)
      if (unitsReadBack(amount) != amount)
        QFAIL(qPrintable(NumberToText(amount)));
    for (qint64 amount = 1; amount < 1000000000000000; amount = amount * 3 + 7)
      QCOMPARE(unitsReadBack(double(amount)), amount);
  }

  void everyHundredthIsWritten()
  {
    for (int cents = 0; cents < 100000; ++cents) {
      const QString text = NumberToText(cents / 100.0);
      QVERIFY2(text.endsWith(QString::asprintf(" и .%02d", cents % 100)), qPrintable(text));
    }
  }

  void noAmount()
  {
    QVERIFY_EXCEPTION_THROWN(NumberToText(std::nan("")), DataError);
    QVERIFY_EXCEPTION_THROWN(NumberToText(-INFINITY), DataError);
  }

  void wholeNumbers()
  {
    QCOMPARE(CustomRound(2.45L), 2);
    QCOMPARE(CustomRound(-2.5L), -3);
    QCOMPARE(CustomRound(-2.49L), -2);
    QCOMPARE(CustomRound(0.5L), 1);
    QCOMPARE(CustomRound(1152921504606846977.5L), 1152921504606846978);
    QCOMPARE(CustomRound(1e30L), std::numeric_limits<qint64>::max());
    QCOMPARE(CustomRound(-1e30L), std::numeric_limits<qint64>::min());
    QCOMPARE(CustomRound(std::nanl("")), 0);
  }

  void decimals()
  {
    QCOMPARE(double(RoundUp(-3.456L, 2)), -3.46);
    QCOMPARE(double(RoundUp(2.5, 0)), 3.0);
    QCOMPARE(double(RoundUp(2.25, -1)), 2.25);
    QCOMPARE(double(RoundUp(1e18, 2)), 1e18);
    QCOMPARE(double(RoundUp(2, 2.345)), 2.35);  // decimals first
    QCOMPARE(RoundUp(922337203685477580.7L, 0), 922337203685477581.0L);
    QCOMPARE(RoundUp(0, 922337203685477580.7L), 922337203685477580.7L);
  }
};

static const testing::RegisterTest<AmountInWordsTest> registerAmountInWordsTest;
#include "amount_in_words_test.moc"
