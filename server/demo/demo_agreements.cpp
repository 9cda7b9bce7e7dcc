// What was agreed with single contractors, seasons and special offers: prices and discounts besides the price list.
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"
#include "server/pricing/currency_rate.h"

namespace kalvor::server {

namespace {

constexpr int contragentsApart = 8;  // every so many has an agreement
constexpr int itemsEach = 12;
constexpr int offersApart = 25;

class AgreementWriter {
 public:
  explicit AgreementWriter(DemoScope& scope)
      : scope_(scope), random_(scope.options.seed + 11),
        prices_(scope.connection, QStringLiteral("N_ItemPrice"),
                {"Id", "Comp_Id", "Side", "Item_Id", "Contragent_Id", "Measure_Id", "Currency_Id", "MinQuantity",
                 "StartDate", "EndDate", "UnitPrice", "PriceIncludingVAT", "AllowInvoiceDisc"}),
        discounts_(scope.connection, QStringLiteral("N_ItemDiscount"),
                   {"Id", "Comp_Id", "Side", "Item_Id", "ItemGroup_Id", "Contragent_Id", "SubDocument_Id", "Measure_Id",
                    "MinQuantity", "StartDate", "EndDate", "DiscountPercent", "SpecialPrice"})
  {
  }

  void contragentPrices();
  void retailPrices();
  void seasonPrices();
  void specialOffers();
  void groupDiscounts();

 private:
  struct Terms {
    int side = 1;
    const DemoContragent* contragent = nullptr;
    QDate from, to;
    qint64 quantity = 0;
    bool includesVat = false;
    bool allowInvoiceDiscount = true;
  };
  void price(const DemoItem& item, const Terms& terms, long double amount);
  Variant groupId(const char* code) const { return scope_.id("N_ItemGroup", QString::fromLatin1(code)); }
  QString nextId(const char* table) { return scope_.id(table, QStringLiteral("A%1").arg(++number_)); }
  QDate yearStart() const { return QDate(scope_.options.lastDay.year(), 1, 1); }

  DemoScope& scope_;
  DemoRandom random_;
  RowInserter prices_, discounts_;
  int number_ = 0;
};

void AgreementWriter::price(const DemoItem& item, const Terms& terms, long double amount)
{
  const QString currency = terms.contragent ? terms.contragent->currencyId : QString();
  if (!currency.isEmpty()) {
    const auto rate = currencyRate(scope_.connection, scope_.companyId, scope_.defaults.localCurrency, currency,
                                   scope_.options.lastDay, 0);
    amount /= unscaled(rate.value_or(amountScale));
  }
  prices_.insert({nextId("N_ItemPrice"), scope_.companyId, terms.side, scope_.id("N_Item", item.code),
                  terms.contragent ? Variant(terms.contragent->id) : Variant(), item.measureId,
                  currency.isEmpty() ? Variant() : Variant(currency), qlonglong(terms.quantity), terms.from,
                  terms.to.isValid() ? Variant(terms.to) : Variant(), qlonglong(scaled(roundUp(2, amount))),
                  int(terms.includesVat), int(terms.allowInvoiceDiscount)});
}

// This year's agreements, in the contractor's currency; from 20 on for less still, and then without invoice discounts.
void AgreementWriter::contragentPrices()
{
  for (qsizetype i = contragentsApart; i < scope_.contragents.size(); i += contragentsApart) {
    const DemoContragent& contragent = scope_.contragents.at(i);
    int position = random_.below(int(scope_.items.size()));
    for (int n = 0; n < itemsEach; ++n) {
      position = (position + 1 + random_.below(17)) % int(scope_.items.size());
      const DemoItem& item = scope_.items.at(position);
      price(item, {1, &contragent, yearStart(), {}, 0, false, true}, 0.9L * unscaled(item.price));
      price(item, {1, &contragent, yearStart(), {}, 20 * amountScale, false, false}, 0.87L * unscaled(item.price));
      if (n % 4 == 0) {
        price(item, {0, &contragent, yearStart(), {}, 0, false, true}, 0.7L * unscaled(item.price));
      }
    }
  }
}

// The walk-in customer is charged prices with VAT.
void AgreementWriter::retailPrices()
{
  if (scope_.contragents.isEmpty()) {
    return;
  }
  const DemoContragent& walkIn = scope_.contragents.first();
  for (qsizetype i = 3; i < scope_.items.size(); i += 9) {
    const DemoItem& item = scope_.items.at(i);
    price(item, {1, &walkIn, scope_.firstDay(), {}, 0, true, false}, 1.2L * unscaled(item.price));
  }
}

void AgreementWriter::seasonPrices()
{
  for (const DemoItem& item : std::as_const(scope_.items)) {
    if (!item.code.startsWith(u"12") && !item.code.startsWith(u"21")) {
      continue;
    }
    for (int year = scope_.firstDay().year(); year <= scope_.options.lastDay.year(); ++year) {
      price(item, {1, nullptr, QDate(year, 11, 15), QDate(year, 12, 31), 0, false, true},
            0.93L * unscaled(item.price));
    }
  }
}

// Every second one with a percent off besides.
void AgreementWriter::specialOffers()
{
  for (qsizetype i = 5; i < scope_.items.size(); i += offersApart) {
    const DemoItem& item = scope_.items.at(i);
    const int percent = i / offersApart % 2 == 0 ? 0 : 2;
    discounts_.insert({nextId("N_ItemDiscount"), scope_.companyId, 1, scope_.id("N_Item", item.code), {}, {}, {},
                       item.measureId, qlonglong(2 * amountScale), yearStart(), {}, qlonglong(percent * amountScale),
                       qlonglong(scaled(roundUp(2, 0.8L * unscaled(item.price))))});
  }
}

void AgreementWriter::groupDiscounts()
{
  const QString carton = scope_.id("N_Measure", QStringLiteral("кашон"));
  const auto insert = [&](int side, const char* group, const Variant& contragent, const Variant& subDocument,
                          const Variant& measure, int quantity, double percent) {
    discounts_.insert({nextId("N_ItemDiscount"), scope_.companyId, side, {}, groupId(group), contragent, subDocument,
                       measure, qlonglong(quantity) * amountScale, yearStart(), {}, qlonglong(scaled(percent)), {}});
  };
  insert(1, "5", {}, {}, carton, 1, 2);
  insert(1, "4", {}, scope_.objects.last().subDocumentId, {}, 0, 1);
  insert(0, "3", {}, {}, {}, 100, 5);
  for (qsizetype i = 10; i < scope_.contragents.size(); i += 10) {
    insert(1, "1", scope_.contragents.at(i).id, {}, {}, 0, 3.5);
  }
}

}  // namespace

void createDemoAgreements(DemoScope& scope)
{
  if (scope.items.isEmpty()) {
    return;
  }
  AgreementWriter writer(scope);
  writer.contragentPrices();
  writer.retailPrices();
  writer.seasonPrices();
  writer.specialOffers();
  writer.groupDiscounts();
}

}  // namespace kalvor::server
