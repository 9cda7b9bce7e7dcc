// Prices, discounts and rates as a document line gets them over the wire.
#include "price_company.h"
#include "price_rules.h"
#include "server/operations/operation.h"
#include "several_tests.h"

namespace kalvor::testing {

namespace {

// What a line says of itself; the rest is a plain line of today in pieces.
struct Line {
  const char* code = "СПИСЪК";
  const char* contragent = "";
  const char* measure = "P";
  double quantity = 1;
  double base = 1;
  Variant date = QDate(2026, 6, 1);
  int includesVat = 0;
  double factor = 1;
  int type = 1;
  const char* busGroup = "VB";
  const char* prodGroup = "VP";
  const char* subDocument = "";

  Variant text(const char* value) const { return *value ? Variant(QString::fromUtf8(value)) : Variant(); }
  VariantArray forPrice() const
  {
    return {text(contragent), text(code), text(measure),   quantity,    date,   base,
            text(busGroup),   text(prodGroup), includesVat, factor, type};
  }
  VariantArray forPurchaseDiscount() const
  {
    return {text(contragent), text(code), text(measure), quantity, text(subDocument), date, base, type};
  }
  VariantArray forSaleDiscount() const
  {
    return {text(contragent), text(code), text(measure), quantity,       text(subDocument), date,
            base,             includesVat, text(busGroup), type};
  }
};

struct Answer {
  int status = 0;
  double first = 0;
  double second = 0;
};

Answer ask(Caller& caller, const char* operation, const VariantArray& request)
{
  const bool twoOut = qstrncmp(operation, "GetSale", 7) == 0;
  VariantArray arguments{Variant(request), -7.0};
  if (twoOut) {
    arguments.append(-7);
  }
  const int status = caller.broker.Call(QLatin1StringView(operation), arguments).toInt();
  return {status, arguments.at(1).toDouble(), twoOut ? arguments.at(2).toDouble() : 0};
}

// The client's rules of a line, as far as they touch its price, around the real lookup.
struct ClientLine {
  Caller& caller;
  Line line;
  double perUnit = 1;
  double unitPrice = 0;
  double originalPrice = 0;

  void lookUp(double multiplier)
  {
    line.base = base;
    const double price = ask(caller, "GetSaleLinePrice", line.forPrice()).first;
    if (price != originalPrice) {
      unitPrice = std::round(multiplier * price * 1e5) / 1e5;
      originalPrice = price;
    }
  }
  void setQuantity(double quantity)
  {
    line.quantity = quantity;
    base = quantity * perUnit;
    lookUp(1);
  }
  void setMeasure(const char* measure, double units)
  {
    line.measure = measure;
    lookUp(perUnit);
    perUnit = units;
    const double before = line.quantity == 0 ? 0 : base / line.quantity;
    if (before != 0) {
      unitPrice = std::round(units / before * unitPrice * 1e5) / 1e5;
    }
    base = line.quantity * units;
  }
  double base = 0;
};

}  // namespace

class PriceLookupTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase()
  {
    company_ = std::make_unique<PriceCompany>(QByteArray(priceRules));
    callers_ = std::make_unique<PriceCallers>(*company_);
  }
  void cleanupTestCase()
  {
    callers_.reset();
    company_.reset();
  }

  void salePrices_data()
  {
    QTest::addColumn<VariantArray>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("price");
    QTest::addColumn<int>("allow");
    const auto row = [](const char* name, const Line& line, int status, double price, int allow) {
      QTest::newRow(name) << line.forPrice() << status << price << allow;
    };
    constexpr int unknown = -1, none = -2, noConversion = -3;
    row("list price", {}, 0, 10, 1);
    row("code in other letters", {.code = "списък"}, 0, 10, 1);
    row("measure not named", {.measure = ""}, 0, 10, 1);
    row("unknown code", {.code = "НЯМА"}, unknown, 0, 0);
    row("code of another company", {.code = "ЧУЖД"}, unknown, 0, 0);
    row("no code", {.code = ""}, unknown, 0, 0);
    row("neither row nor list price", {.code = "БЕЗ ЦЕНА"}, none, 0, 0);
    row("service line", {.type = 3}, 0, 10, 1);
    row("set line", {.type = 6}, 0, 10, 1);
    row("text line", {.type = 0}, unknown, 0, 0);
    row("account line", {.type = 2}, unknown, 0, 0);

    row("everybody", {.code = "БЛИЗО"}, 0, 9, 1);
    row("contractor without group", {.code = "БЛИЗО", .contragent = "C3"}, 0, 9, 1);
    row("unknown contractor", {.code = "БЛИЗО", .contragent = "C9"}, 0, 9, 1);
    row("contractor of another company", {.code = "БЛИЗО", .contragent = "CX"}, 0, 9, 1);
    row("price group", {.code = "БЛИЗО", .contragent = "C2"}, 0, 8, 0);
    row("contractor before his group", {.code = "БЛИЗО", .contragent = "C1"}, 0, 7, 1);
    row("contractor, greater quantity", {.code = "БЛИЗО", .contragent = "C1", .quantity = 50, .base = 50}, 0, 6.5, 1);

    row("no quantity", {.code = "СТЪПКИ", .quantity = 0, .base = 0}, 0, 10, 1);
    row("below the step", {.code = "СТЪПКИ", .quantity = 9.999999, .base = 9.999999}, 0, 10, 1);
    row("on the step", {.code = "СТЪПКИ", .quantity = 10, .base = 10}, 0, 9, 1);
    row("between the steps", {.code = "СТЪПКИ", .quantity = 99, .base = 99}, 0, 9, 1);
    row("highest step", {.code = "СТЪПКИ", .quantity = 5000, .base = 5000}, 0, 8, 1);
    row("goods taken back", {.code = "СТЪПКИ", .quantity = -10, .base = -10}, 0, 9, 1);
    row("boxes reach a step of pieces", {.code = "СТЪПКИ", .measure = "B", .quantity = 1, .base = 12}, 0, 108, 1);

    const auto on = [](int month, int day) { return Variant(QDate(2026, month, day)); };
    row("the day before", {.code = "СРОКОВЕ", .date = QDate(2025, 12, 31)}, 0, 10, 1);
    row("first day", {.code = "СРОКОВЕ", .date = on(1, 1)}, 0, 9, 1);
    row("later start wins", {.code = "СРОКОВЕ", .date = on(1, 15)}, 0, 8.5, 1);
    row("its last day", {.code = "СРОКОВЕ", .date = on(1, 20)}, 0, 8.5, 1);
    row("after it", {.code = "СРОКОВЕ", .date = on(1, 21)}, 0, 9, 1);
    row("last day", {.code = "СРОКОВЕ", .date = on(1, 31)}, 0, 9, 1);
    row("the day after", {.code = "СРОКОВЕ", .date = on(2, 1)}, 0, 10, 1);
    row("no date is today", {.code = "СРОКОВЕ", .date = Variant()}, 0, 8, 1);
    row("date as text", {.code = "СРОКОВЕ", .date = QStringLiteral("20260116")}, 0, 8.5, 1);
    row("date with a time", {.code = "СРОКОВЕ", .date = QDateTime(QDate(2026, 1, 31), QTime(23, 59))}, 0, 9, 1);

    row("piece", {.code = "КУТИЯ"}, 0, 1, 1);
    row("box, own row", {.code = "КУТИЯ", .measure = "B", .quantity = 2, .base = 24}, 0, 11, 0);
    row("box, own row's step", {.code = "КУТИЯ", .measure = "B", .quantity = 10, .base = 120}, 0, 10.8, 1);
    row("crate by the piece's row", {.code = "КУТИЯ", .measure = "K", .quantity = 1, .base = 24}, 0, 24, 1);
    row("crates by the piece's step", {.code = "КУТИЯ", .measure = "K", .quantity = 5, .base = 120}, 0, 21.6, 1);
    row("box of the list price", {.measure = "B", .quantity = 1, .base = 12}, 0, 120, 1);
    row("box, quantities still of pieces", {.code = "КУТИЯ", .measure = "B", .quantity = 2, .base = 2}, 0, 0.91667, 0);
    row("piece, quantities still of boxes", {.code = "КУТИЯ", .measure = "P", .quantity = 2, .base = 24}, 0, 1, 1);
    row("box of ten, typed", {.code = "КУТИЯ", .measure = "B", .quantity = 2, .base = 20}, 0, 11, 0);
    row("measure of no item", {.measure = "H", .quantity = 2, .base = 10}, 0, 50, 1);
    row("measure of no item, nothing said", {.measure = "H", .quantity = 2, .base = 0}, 0, 10, 1);

    row("VAT taken out", {.code = "С ДДС"}, 0, 100, 1);
    row("VAT left in", {.code = "С ДДС", .includesVat = 1}, 0, 120, 1);
    row("VAT put in", {.includesVat = 1}, 0, 12, 1);
    row("VAT of another group", {.includesVat = 1, .prodGroup = "VP9"}, 0, 10.9, 1);
    row("the item's group stands in", {.includesVat = 1, .prodGroup = ""}, 0, 12, 1);
    row("VAT taken out, rounded", {.code = "С ДДС", .contragent = "C1"}, 0, 0.83333, 1);
    row("no set-up, other kind", {.code = "С ДДС", .busGroup = "V?"}, noConversion, 0, 0);
    row("no set-up, same kind", {.code = "С ДДС", .includesVat = 1, .busGroup = "V?"}, 0, 120, 1);
    row("no business group", {.includesVat = 1, .busGroup = ""}, noConversion, 0, 0);

    row("foreign price, rate of the day", {.code = "ВАЛУТА", .date = on(1, 9)}, 0, 20, 1);
    row("foreign price, next rate", {.code = "ВАЛУТА", .date = on(1, 10)}, 0, 25, 1);
    row("foreign price in its currency", {.code = "ВАЛУТА", .date = on(1, 10), .factor = 2.5}, 0, 10, 1);
    row("foreign price before any rate", {.code = "ВАЛУТА", .date = QDate(2025, 12, 31)}, noConversion, 0, 0);
    row("currency without rates", {.code = "ВАЛУТА", .contragent = "C1"}, noConversion, 0, 0);
    row("local price in leva", {.factor = 0.511292}, 0, 19.55830, 1);
    row("factor 0", {.factor = 0}, 0, 10, 1);
    row("half a unit away from zero", {.code = "ВАЛУТА", .contragent = "C2"}, 0, 1.00001, 1);
  }
  void salePrices()
  {
    QFETCH(VariantArray, request);
    const Answer answer = ask(callers_->clerk, "GetSaleLinePrice", request);
    QTEST(answer.status, "status");
    QTEST(answer.first, "price");
    QTEST(int(answer.second), "allow");
  }

  void purchasePrices_data()
  {
    QTest::addColumn<VariantArray>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("price");
    QTest::newRow("everybody") << Line{.code = "БЛИЗО"}.forPrice() << 0 << 5.0;
    QTest::newRow("supplier") << Line{.code = "БЛИЗО", .contragent = "C1"}.forPrice() << 0 << 4.5;
    QTest::newRow("cost, never the list price") << Line{}.forPrice() << 0 << 6.0;
    QTest::newRow("only sale rows") << Line{.code = "СТЪПКИ"}.forPrice() << -2 << 0.0;
    QTest::newRow("no cost") << Line{.code = "БЕЗ ЦЕНА"}.forPrice() << -2 << 0.0;
    QTest::newRow("VAT put in") << Line{.includesVat = 1}.forPrice() << 0 << 7.2;
  }
  void purchasePrices()
  {
    QFETCH(VariantArray, request);
    const Answer answer = ask(callers_->clerk, "GetPurchLinePrice", request);
    QTEST(answer.status, "status");
    QTEST(answer.first, "price");
  }

  // The caller multiplies by the units itself when the measure changes and takes the price as it is otherwise.
  void aLineKeepsItsPriceThroughMeasures()
  {
    for (const char* code : {"СПИСЪК", "КУТИЯ"}) {
      const bool boxed = qstrcmp(code, "КУТИЯ") == 0;
      ClientLine line{callers_->clerk, {.code = code, .quantity = 0}};
      line.lookUp(1);
      const double piece = boxed ? 1 : 10;
      const double box = boxed ? 11 : 120;
      QCOMPARE(line.unitPrice, piece);
      line.setQuantity(5);
      line.setMeasure("B", 12);
      QVERIFY2(qAbs(line.unitPrice - box) < 1e-4, code);
      line.setQuantity(6);
      QCOMPARE(line.unitPrice, box);
      line.setMeasure("K", 24);
      QCOMPARE(line.unitPrice, boxed ? 21.6 : 240.0);  // 144 pieces reach the piece's step
      line.setMeasure("P", 1);
      QCOMPARE(line.unitPrice, piece);
      line.setQuantity(7);
      QCOMPARE(line.unitPrice, piece);
    }
  }

  void saleDiscounts_data()
  {
    QTest::addColumn<VariantArray>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("percent");
    QTest::addColumn<double>("special");
    const auto row = [](const char* name, const Line& line, int status, double percent, double special) {
      QTest::newRow(name) << line.forSaleDiscount() << status << percent << special;
    };
    row("none", {.code = "ВАЛУТА"}, 0, 0, 0);
    row("parent group", {}, 0, 1, 0);
    row("own group from its quantity", {.quantity = 24, .base = 24}, 0, 2, 0);
    row("own group, base units of boxes", {.measure = "B", .quantity = 2, .base = 24}, 0, 2, 0);
    row("item before group, in its measure", {.measure = "B", .quantity = 3, .base = 36}, 0, 3, 0);
    row("sub-type", {.quantity = 24, .base = 24, .subDocument = "ПРОФ"}, 0, 4, 0);
    row("another sub-type", {.subDocument = "ФАКТ"}, 0, 1, 0);
    row("price group before sub-type", {.contragent = "C2", .subDocument = "ПРОФ"}, 0, 5, 0);
    row("contractor in his month", {.contragent = "C1", .date = QDate(2026, 1, 31)}, 0, 6.5, 0);
    row("contractor after it", {.contragent = "C1", .date = QDate(2026, 2, 1)}, 0, 5, 0);
    row("contractor without discount", {.code = "БЛИЗО", .contragent = "C1"}, 0, 0, 0);
    row("circle of groups", {.code = "СТЪПКИ"}, 0, 8, 0);
    row("special price with a percent", {.code = "ОФЕРТА"}, 1, 5, 12.5);
    row("special price with VAT", {.code = "ОФЕРТА", .includesVat = 1}, 1, 5, 15);
    row("special price of a box", {.code = "ОФЕРТА", .measure = "B", .quantity = 1, .base = 12}, 1, 0, 96);
    row("special price of a crate", {.code = "ОФЕРТА", .measure = "K", .quantity = 1, .base = 24}, 1, 5, 300);
    row("special price, no VAT set-up", {.code = "ОФЕРТА", .includesVat = 1, .busGroup = "V?"}, -3, 0, 0);
    row("group before everybody's offer", {.code = "ОФЕРТА", .contragent = "C2"}, 0, 5, 0);
    row("unknown code", {.code = "НЯМА"}, -1, 0, 0);
    row("code of another company", {.code = "ЧУЖД"}, -1, 0, 0);
    row("text line", {.type = 0}, -1, 0, 0);
  }
  void saleDiscounts()
  {
    QFETCH(VariantArray, request);
    const Answer answer = ask(callers_->clerk, "GetSaleLineDiscount", request);
    QTEST(answer.status, "status");
    QTEST(answer.first, "percent");
    QTEST(answer.second, "special");
  }

  void purchaseDiscounts_data()
  {
    QTest::addColumn<VariantArray>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("percent");
    QTest::newRow("below its quantity") << Line{.quantity = 4}.forPurchaseDiscount() << 0 << 0.0;
    QTest::newRow("found") << Line{.quantity = 5}.forPurchaseDiscount() << 1 << 7.0;
    QTest::newRow("sale rows do not count") << Line{.code = "ОФЕРТА"}.forPurchaseDiscount() << 0 << 0.0;
    QTest::newRow("unknown code") << Line{.code = "НЯМА"}.forPurchaseDiscount() << -1 << 0.0;
  }
  void purchaseDiscounts()
  {
    QFETCH(VariantArray, request);
    const Answer answer = ask(callers_->clerk, "GetPurchLineDiscount", request);
    QTEST(answer.status, "status");
    QTEST(answer.first, "percent");
  }

  void rates_data()
  {
    QTest::addColumn<QVariant>("currency");
    QTest::addColumn<QVariant>("date");
    QTest::addColumn<QVariant>("kind");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("rate");
    const auto row = [](const char* name, const Variant& currency, const Variant& date, const Variant& kind, int status,
                        double rate) { QTest::newRow(name) << currency << date << kind << status << rate; };
    row("of the day", "XTS", QDate(2026, 1, 10), 0, 0, 2.5);
    row("the last before", "XTS", QDate(2026, 1, 9), 0, 0, 2);
    row("today", "XTS", Variant(), 0, 0, 2.5);
    row("in other letters", "xts", QDate(2026, 6, 1), Variant(), 0, 2.5);
    row("another kind", "XTS", QDate(2026, 6, 1), 1, 0, 3);
    row("a kind without rates", "XTS", QDate(2026, 6, 1), 2, -1, 0);
    row("before any", "XTS", QDate(2025, 12, 31), 0, -1, 0);
    row("unknown", "???", QDate(2026, 6, 1), 0, -1, 0);
    row("of another company", "XAU", QDate(2026, 6, 1), 0, -1, 0);
    row("local", "EUR", QDate(1999, 1, 1), 0, 0, 1);
    row("none", Variant(), QDate(2026, 6, 1), 0, 0, 1);
    row("fixed for ever", "BGN", QDate(2026, 6, 1), 0, 0, 0.511292);
    row("hostile", "XTS' OR '1'='1", QDate(2026, 6, 1), 0, -1, 0);
  }
  void rates()
  {
    QFETCH(QVariant, currency);
    QFETCH(QVariant, date);
    QFETCH(QVariant, kind);
    VariantArray arguments{currency, date, kind, Variant()};
    QTEST(callers_->guest.broker.Call(QStringLiteral("GetCurrencyRate"), arguments).toInt(), "status");
    QTEST(arguments.at(3).toDouble(), "rate");
    QCOMPARE(arguments.at(0), currency);
    QCOMPARE(arguments.at(1), date);
  }

  void onlyOnesOwnCompany()
  {
    QCOMPARE(ask(callers_->stranger, "GetSaleLinePrice", Line{}.forPrice()).status, -1);
    QCOMPARE(ask(callers_->stranger, "GetSaleLinePrice", Line{.code = "ЧУЖД"}.forPrice()).first, 10.0);
    QCOMPARE(ask(callers_->guest, "GetSaleLinePrice", Line{}.forPrice()).first, 10.0);
  }

  void manyAtOnce()
  {
    const auto question = [](const char* operation, const Variant& request) {
      return Variant(VariantArray{QString::fromLatin1(operation), Variant(VariantArray{request, 0.0, 0.0})});
    };
    const VariantArray price = Line{}.forPrice();
    const VariantArray discount = Line{}.forSaleDiscount();
    VariantArray arguments{Variant(VariantArray{question("GetSaleLinePrice", price), question("GetSaleLinePrice", price.first(3)),
                                                question("UpdateClientData", VariantArray()), question("ReadMany", VariantArray()),
                                                QStringLiteral("nonsense"), question("getsalelinediscount", discount)}),
                           Variant()};
    QCOMPARE(callers_->clerk.broker.Call(QStringLiteral("ReadMany"), arguments).toInt(), 6);
    const VariantArray answers = arguments[1].toList();
    const auto answered = [&](int index) { return answers[index].toList(); };
    const Answer alone = ask(callers_->clerk, "GetSaleLinePrice", price);
    QCOMPARE(answered(0)[0].toInt(), alone.status);
    QCOMPARE(answered(0)[1].toList().value(1).toDouble(), alone.first);
    QCOMPARE(answered(5)[1].toList().value(1).toDouble(), ask(callers_->clerk, "GetSaleLineDiscount", discount).first);
    for (const int refused : {1, 2, 3, 4}) {
      QVERIFY2(isNull(answers[refused]), qPrintable(QString::number(refused)));
    }
    VariantArray tooMany{Variant(VariantArray(1001, question("GetSaleLinePrice", price))), Variant()};
    QCOMPARE(Caller::refusal([&] { callers_->clerk.broker.Call(QStringLiteral("ReadMany"), tooMany); }),
             int(RpcError::BadArguments));
  }

  void hostileTexts_data()
  {
    QTest::addColumn<QString>("text");
    QTest::newRow("quote") << "СПИСЪК'";
    QTest::newRow("always true") << "x' OR 1=1 --";
    QTest::newRow("statement") << "'; DELETE FROM N_Item; --";
    QTest::newRow("wildcards") << "%";
    QTest::newRow("nothing inside") << QStringLiteral("СПИСЪК") + QChar(0) + QStringLiteral("x");
    QTest::newRow("half a pair") << QString(QChar(0xD800));
    QTest::newRow("long") << QString(60'000, u'Я');
  }
  void hostileTexts()
  {
    QFETCH(QString, text);
    VariantArray price = Line{}.forPrice();
    price[1] = text;
    QCOMPARE(ask(callers_->clerk, "GetSaleLinePrice", price).status, -1);
    VariantArray elsewhere = Line{.code = "БЛИЗО"}.forPrice();
    elsewhere[0] = elsewhere[6] = elsewhere[7] = text;
    QCOMPARE(ask(callers_->clerk, "GetSaleLinePrice", elsewhere).first, 9.0);
    VariantArray discount = Line{}.forSaleDiscount();
    discount[4] = discount[0] = text;
    QCOMPARE(ask(callers_->clerk, "GetSaleLineDiscount", discount).first, 1.0);
  }

  void wrongRequests_data()
  {
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QVariant>("request");
    const VariantArray price = Line{}.forPrice();
    const auto with = [&](int place, const Variant& value) {
      VariantArray changed = price;
      changed[place] = value;
      return QVariant(changed);
    };
    const QString sale = QStringLiteral("GetSaleLinePrice");
    QTest::newRow("no array") << sale << QVariant(QStringLiteral("СПИСЪК"));
    QTest::newRow("null") << sale << QVariant();
    QTest::newRow("empty") << sale << QVariant(VariantArray());
    QTest::newRow("one short") << sale << QVariant(price.first(10));
    QTest::newRow("one too many") << sale << QVariant(price + VariantArray{1});
    QTest::newRow("discount's array") << sale << QVariant(Line{}.forSaleDiscount());
    QTest::newRow("price's array") << QStringLiteral("GetSaleLineDiscount") << QVariant(price);
    QTest::newRow("sale's array") << QStringLiteral("GetPurchLineDiscount") << QVariant(Line{}.forSaleDiscount());
    QTest::newRow("array as code") << sale << with(1, VariantArray{1});
    QTest::newRow("bytes as contractor") << sale << with(0, QByteArray("C1"));
    QTest::newRow("text as quantity") << sale << with(3, QStringLiteral("много"));
    QTest::newRow("quantity beyond counting") << sale << with(3, 1e300);
    QTest::newRow("array as date") << sale << with(4, VariantArray{1});
    QTest::newRow("no date") << sale << with(4, QStringLiteral("20260230"));
    QTest::newRow("text as flag") << sale << with(8, QStringLiteral("да"));
    QTest::newRow("text as factor") << sale << with(9, QStringLiteral("1,5"));
    QTest::newRow("fraction as type") << sale << with(10, 1.5);
  }
  void wrongRequests()
  {
    QFETCH(QString, operation);
    QFETCH(QVariant, request);
    try {
      VariantArray arguments{request, 0.0};
      callers_->clerk.broker.Call(operation, arguments);
      QFAIL("not refused");
    } catch (const RpcError& error) {
      QCOMPARE(error.code(), int(RpcError::BadArguments));
      QVERIFY(!error.message().isEmpty());
    }
    QCOMPARE(ask(callers_->clerk, "GetSaleLinePrice", Line{}.forPrice()).first, 10.0);
  }

 private:
  std::unique_ptr<PriceCompany> company_;
  std::unique_ptr<PriceCallers> callers_;
};

static RegisterTest<PriceLookupTest> priceLookupTest;

}  // namespace kalvor::testing

#include "price_lookup_test.moc"
