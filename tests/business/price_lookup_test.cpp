// Which question the session asks for a price, what it sends, and what it takes from the answers.
#include "session/scripted_session.h"
#include "several_tests.h"

using namespace kalvor;
using namespace kalvor::testing;

namespace {

struct Answers {
  int priceStatus = 0, discountStatus = 0;
  double price = 10, discount = 5, special = 12.5;
  int flag = 1;
};

struct LookupCase {
  int what, side;
  quint8 flagBefore;
  Answers answers;
  QString asked;  // P price, D discount
  double price, discount;
  quint8 flag;
};

}  // namespace

class PriceLookupTest : public QObject {
  Q_OBJECT
 private slots:
  void lookups_data()
  {
    QTest::addColumn<LookupCase>("c");
    QTest::newRow("sale, both") << LookupCase{0, 1, 0, {}, "PD", 10, 5, 1};
    QTest::newRow("sale, special price") << LookupCase{0, 1, 0, {.discountStatus = 1}, "PD", 12.5, -5, 1};
    QTest::newRow("sale, no discount answer") << LookupCase{0, 1, 0, {.discountStatus = -1}, "PD", 10, 0, 1};
    QTest::newRow("sale, no document discount") << LookupCase{0, 1, 1, {.flag = 0}, "P", 10, 0, 0};
    QTest::newRow("sale, no price, flag set before") << LookupCase{0, 1, 1, {.priceStatus = -1}, "PD", 0, 5, 1};
    QTest::newRow("sale, no price, flag clear") << LookupCase{0, 1, 0, {.priceStatus = -1}, "P", 0, 0, 0};
    QTest::newRow("sale, price only") << LookupCase{1, 1, 0, {}, "P", 10, 0, 1};
    QTest::newRow("sale, discount only, status 1") << LookupCase{2, 1, 7, {.discountStatus = 1}, "D", 12.5, -5, 7};
    QTest::newRow("sale, discount only, status 0") << LookupCase{2, 1, 0, {}, "D", 12.5, 0, 0};
    QTest::newRow("sale, discount only, nothing special")
        << LookupCase{2, 1, 0, {.discountStatus = -1, .special = 0}, "D", 0, 0, 0};
    QTest::newRow("purchase, both, discount first") << LookupCase{0, 0, 0, {.discountStatus = 1}, "DP", 10, 5, 0};
    QTest::newRow("purchase, status 0 is no discount") << LookupCase{0, 0, 0, {}, "DP", 10, 0, 0};
    QTest::newRow("purchase, no price") << LookupCase{1, 0, 0, {.priceStatus = -1}, "P", 0, 0, 0};
    QTest::newRow("purchase, discount only") << LookupCase{2, 0, 0, {.discountStatus = 1}, "D", 0, 5, 0};
    QTest::newRow("unknown side") << LookupCase{0, 2, 1, {}, "", 0, 0, 1};
    QTest::newRow("unknown question") << LookupCase{3, 1, 1, {}, "", 0, 0, 1};
  }
  void lookups()
  {
    QFETCH(LookupCase, c);
    ScriptedSession session;
    const Answers& a = c.answers;
    session.server->answer(u"GetSaleLinePrice"_s, a.priceStatus, {{1, a.price}, {2, a.flag}});
    session.server->answer(u"GetSaleLineDiscount"_s, a.discountStatus, {{1, a.discount}, {2, a.special}});
    session.server->answer(u"GetPurchLinePrice"_s, a.priceStatus, {{1, a.price}});
    session.server->answer(u"GetPurchLineDiscount"_s, a.discountStatus, {{1, a.discount}});
    session.server->log.clear();
    VariantArray request{c.what, c.side};
    for (int position = 2; position <= 14; ++position)
      request << position;
    TItemParams params{99, 99, c.flagBefore};
    QCOMPARE(DM->GetItemPriceAndDiscount(request, params), 0);
    QString asked;
    for (const QString& call : session.server->log)
      asked += call.endsWith(u"Price"_s) ? u'P' : u'D';
    QCOMPARE(asked, c.asked);
    QCOMPARE(params.price, c.price);
    QCOMPARE(params.discount, c.discount);
    QCOMPARE(params.allowInvoiceDisc, c.flag);
  }

  void positionsSent_data()
  {
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QList<int>>("positions");
    QTest::newRow("sale price") << 1 << u"GetSaleLinePrice"_s << QList<int>{2, 3, 4, 9, 10, 11, 6, 12, 7, 13, 14};
    QTest::newRow("sale discount") << 1 << u"GetSaleLineDiscount"_s << QList<int>{2, 3, 4, 9, 8, 10, 11, 7, 6, 14};
    QTest::newRow("purchase price") << 0 << u"GetPurchLinePrice"_s << QList<int>{2, 3, 4, 9, 10, 11, 6, 12, 7, 13, 14};
    QTest::newRow("purchase discount") << 0 << u"GetPurchLineDiscount"_s << QList<int>{2, 3, 4, 9, 8, 10, 11, 14};
  }
  void positionsSent()
  {
    QFETCH(int, side);
    QFETCH(QString, operation);
    QFETCH(QList<int>, positions);
    ScriptedSession session;
    for (const char* name : {"GetSaleLinePrice", "GetSaleLineDiscount", "GetPurchLinePrice", "GetPurchLineDiscount"})
      session.server->answer(QString::fromLatin1(name), 0, {});
    VariantArray request{0, side};
    for (int position = 2; position <= 14; ++position)
      request << position;
    TItemParams params{0, 0, 1};
    session.server->answer(u"GetSaleLinePrice"_s, 0, {{2, 1}});
    DM->GetItemPriceAndDiscount(request, params);
    QList<int> sent;
    for (const Variant& value : session.server->sentOnce(operation).value(0).toList())
      sent << value.toInt();
    QCOMPARE(sent, positions);
  }

  void nothingToAskAndErrors()
  {
    ScriptedSession session;
    TItemParams params{99, 99, 1};
    for (const Variant& request : {Variant(), Variant(VariantArray()), Variant(5)})
      QCOMPARE(DM->GetItemPriceAndDiscount(request, params), 0);
    QCOMPARE(params.price, 0.0);
    session.server->answer(u"GetSaleLinePrice"_s, 0, {{1, 10.0}, {2, 1}});
    params = {99, 99, 0};
    QCOMPARE(DM->GetItemPriceAndDiscount(VariantArray{0, 1}, params), -1);  // the discount question fails
    QCOMPARE(params.price, 10.0);
    QCOMPARE(params.discount, 0.0);
  }

  void rates()
  {
    ScriptedSession session;
    const QDate day(2026, 1, 31);
    QCOMPARE(DM->GetCurrencyRate(u"EUR"_s, day, 0), 0.0);  // no such operation
    session.server->answer(u"GetCurrencyRate"_s, 0, {{3, 1.95583}});
    QCOMPARE(DM->GetCurrencyRate(u"EUR"_s, day, 0), 1.95583);
    QCOMPARE(session.server->sent.value(u"GetCurrencyRate"_s).last().mid(0, 3), (VariantArray{u"EUR"_s, day, 0}));
    session.server->answer(u"GetCurrencyRate"_s, 1, {{3, 1.95583}});
    QCOMPARE(DM->GetCurrencyRate(u"EUR"_s, day, 0), 0.0);
  }
};

static RegisterTest<PriceLookupTest> registered;
#include "price_lookup_test.moc"
