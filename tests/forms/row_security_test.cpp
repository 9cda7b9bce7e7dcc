// A user whose rights hide rows of some forms: whatever he does in a window, and whatever the calls behind it are asked
// for by hand, no hidden row appears. Hidden documents carry СКРИТ in their texts, hidden contractors ТАЕН; one row of
// each kind that may be seen carries ЯВЕН.
#include "../several_tests.h"
#include "row_security_ways.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

void fillRows(const QList<Way>& ways)
{
  QTest::addColumn<const Way*>("way");
  for (const Way& way : ways) {
    QTest::newRow(way.name) << &way;
  }
}

}  // namespace

Q_DECLARE_METATYPE(const Way*)

class RowSecurityTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    const char* idle = hideRows();
    QVERIFY2(!idle, idle);
  }

  void throughWindows_data() { fillRows(windowWays()); }
  void throughWindows() { check(); }

  void throughCalls_data() { fillRows(callWays()); }
  void throughCalls() { check(); }

  void theAdministratorSeesThem()
  {
    Desk desk;
    const QStringList texts = recordsOf(desk.open<TfBrSaleInvoice>(securedList));
    QVERIFY(texts.contains(securedIds().hidden) && texts.contains(securedIds().own));
  }

  void aHiddenDocumentIsNotCheckedOut()
  {
    Desk desk(QStringLiteral("CLERK"));
    const auto checkOut = [](const QString& document) {
      VariantArray arguments{document, securedCard, Variant()};
      return DM->ConBroker->Call(QStringLiteral("CheckOutDocument"), arguments).toInt();
    };
    QVERIFY_EXCEPTION_THROWN(checkOut(securedIds().hidden), RpcError);
    QCOMPARE(checkOut(securedIds().own), 0);
    QCOMPARE(checkOut(QStringLiteral("NEWDOCUMENT")), 0);
  }

  void aHiddenContragentIsNotJudged()
  {
    Desk desk(QStringLiteral("CLERK"));
    const auto verdict = [](const QString& contragent) {
      VariantArray arguments{contragent, 1e9, 3};
      return DM->ConBroker->Call(QStringLiteral("CheckSaleContragentParams"), arguments).toInt();
    };
    QCOMPARE(verdict(securedIds().contragent), verdict(QStringLiteral("NOBODY")));
  }

 private:
  static void check()
  {
    QFETCH(const Way*, way);
    Desk desk(QStringLiteral("CLERK"));
    QVERIFY(desk.session.loggedIn);
    QStringList seen;
    QString refusal;
    try {
      seen = way->run(desk);
    } catch (const DataError& error) {
      refusal = error.message();
    }
    seen += desk.window.titles + desk.prompt.messages;
    const QString all = seen.join(u'\n');
    QVERIFY2(!all.contains(way->hidden), qPrintable(seen.filter(way->hidden).value(0)));
    QVERIFY(!seen.contains(way->hidden == hiddenDocument ? securedIds().hidden : securedIds().contragent));
    QVERIFY2(way->shows == Shows::Nothing || all.contains(seenRow),
             qPrintable(QStringLiteral("nothing was shown: ") + refusal + desk.prompt.messages.join(u'\n')));
  }
};

static const RegisterTest<RowSecurityTest> registerRowSecurityTest;
#include "row_security_test.moc"
