#include "common/identifiers.h"
#include "common/series_number.h"
#include "scratch_documents.h"
#include "session/error_log.h"
#include "several_tests.h"

using namespace kalvor;

class IdentifiersTest : public QObject {
  Q_OBJECT

  static void checkedTexts(std::initializer_list<std::tuple<const char*, QString, bool>> rows)
  {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("correct");
    for (const auto& [name, text, correct] : rows)
      QTest::newRow(name) << text << correct;
  }

 private slots:
  void bulstat_data()
  {
    checkedTexts({{"nine digits", "121577091", true},
                  {"separators", " 121-577/091 ", true},
                  {"wrong", "121577092", false},
                  {"second weights", "100000086", true},
                  {"remainder 10 twice", "100000550", true},
                  {"not the first remainder", "100000551", false},
                  {"ten digits", "1215770910", false},
                  {"twelve digits", "121577091000", false},
                  {"thirteen digits", "1215770910002", true},
                  {"thirteenth wrong", "1215770910003", false},
                  {"ninth wrong", "1215770920002", false},
                  {"thirteen, second weights", "1215770910062", true},
                  {"thirteen, remainder 10 twice", "1215770911090", true},
                  {"other digits", QString("121577091").replace('1', QChar(0x0661)), false},
                  {"empty", "", false}});
  }
  void bulstat()
  {
    QFETCH(QString, text);
    QTEST(isCorrectBulstat(text), "correct");
  }

  void taxNumber_data()
  {
    checkedTexts({{"remainder 0", "1234560030", true},
                  {"remainder 5", " 1234560006 ", true},
                  {"wrong", "1234560007", false},
                  {"remainder 1, digit 0", "1234560090", false},
                  {"remainder 1, digit 1", "1234560091", false},
                  {"inner blank", "12345 0006", false},
                  {"nine digits", "123456003", false},
                  {"eleven digits", "12345600300", false}});
  }
  void taxNumber()
  {
    QFETCH(QString, text);
    QTEST(isCorrectTaxNo(text), "correct");
  }

  void personalNumber_data()
  {
    checkedTexts({{"published sample", "7523169263", true},
                  {"wrong", "7523169264", false},
                  {"remainder 10", "8001011010", true},
                  {"leap day", "8002291234", true},
                  {"no leap day", "8102291238", false},
                  {"1900 had none", "0002291230", false},
                  {"2000 had one", "0042291239", true},
                  {"1800 had none", "0022291234", false},
                  {"1900", "0001011231", true},
                  {"31 December 1999", "9912311230", true},
                  {"31 November 2099", "9951311234", false},
                  {"month 13", "0013311235", false},
                  {"month 33", "0033011232", false},
                  {"month 53", "7553011238", false},
                  {"leading blank", " 7523169263", false},
                  {"trailing blank", "7523169263 ", false},
                  {"letter", "75231692a3", false}});
  }
  void personalNumber()
  {
    QFETCH(QString, text);
    QTEST(isCorrectEGN(text), "correct");
  }

  void seriesNumbers_data()
  {
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("prefixed");
    QTest::addColumn<QString>("next");
    QTest::addColumn<bool>("fits");
    QTest::addColumn<bool>("logged");
    const auto row = [](const char* name, const char* number, const char* maximum, const char* prefix, int step,
                        bool prefixed, const char* next, bool fits, bool logged = false) {
      QTest::newRow(name) << number << maximum << prefix << step << prefixed << next << fits << logged;
    };
    row("leading zeros", "0000123", "9999999", "", 1, false, "0000124", true);
    row("letters before", "A-0099", "A-9999", "", 1, false, "A-0100", true);
    row("the maximum itself", "0099", "100", "", 1, false, "0100", true);
    row("past the maximum", "0100", "100", "", 1, false, "0101", false);
    row("more digits", "999", "5000", "", 1, false, "1000", true);
    row("letters behind", "09/x", "50", "", 1, false, "10/x", true);
    row("more digits and letters behind", "N9/x", "50", "", 5, false, "N14/x", true);
    row("fewer digits", "1000", "5000", "", -1, false, "0999", true);
    row("prefix", "2600123", "9999999", "26", 1, true, "2600124", true);
    row("another prefix", "INV2500123", "99999", "26", 1, true, "INV2600124", true);
    row("prefix not asked for", "2600123", "9999999", "26", 1, false, "2600124", true);
    row("prefix alone", "26", "99", "26", 1, true, "26", false, true);
    row("inner sign", "12-34", "9999", "", 1, false, "12-34", false, true);
    row("no digits", "ABC", "9999", "", 1, false, "ABC", false, true);
    row("no maximum", "1", "", "", 1, false, "2", false, true);
    row("too long", "99999999999999999999", "9", "", 1, false, "99999999999999999999", false, true);
    row("the last integer", "9223372036854775807", "9", "", 1, false, "9223372036854775807", false, true);
    row("below zero", "1", "9", "", -2, false, "1", false, true);
    row("other digits", "\u0661\u0662", "9", "", 1, false, "\u0661\u0662", false, true);
  }
  void seriesNumbers()
  {
    QFETCH(QString, number);
    QFETCH(QString, maximum);
    QFETCH(QString, prefix);
    QFETCH(int, step);
    QFETCH(bool, prefixed);
    QFETCH(bool, logged);
    const testing::ScratchDocuments documents;
    InitLog();
    QTEST(IncSeriesNo(number, maximum, prefix, step, prefixed), "fits");
    QTEST(number, "next");
    QStringList lines;
    LoadErrorLog(lines);
    QCOMPARE(lines.contains("[Процедура]: rdmKalvor.IncSeriesNo"), logged);
    CloseLog();
  }
};

static const testing::RegisterTest<IdentifiersTest> registerIdentifiersTest;
#include "identifiers_test.moc"
