// Contractors and currency rates.
#include <cmath>

#include "server/demo/demo_names.h"
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

struct ForeignFirm {
  const char16_t* country;
  const char16_t* town;
  const char16_t* vatPrefix;  // empty: outside the Union
  const char16_t* currency;   // empty: local
};
constexpr ForeignFirm foreignFirms[] = {
    {u"Германия", u"Мюнхен", u"DE", u""}, {u"Гърция", u"Солун", u"EL", u""},
    {u"Румъния", u"Букурещ", u"RO", u""}, {u"Австрия", u"Виена", u"ATU", u""},
    {u"Италия", u"Милано", u"IT", u""},   {u"Великобритания", u"Лондон", u"", u"GBP"},
    {u"Сърбия", u"Белград", u"", u""},    {u"Турция", u"Истанбул", u"", u"USD"},
    {u"САЩ", u"Чикаго", u"", u"USD"},     {u"Швейцария", u"Цюрих", u"", u"CHF"}};
constexpr const char16_t* foreignWords[] = {u"Alpen", u"Baltic", u"Corner", u"Delta", u"Europa", u"Forum", u"Global",
                                            u"Helios", u"Karat", u"Merkur", u"Nordic", u"Orion", u"Prisma", u"Terra"};
constexpr const char16_t* foreignForms[] = {u"GmbH", u"S.A.", u"Ltd.", u"S.R.L.", u"AG", u"Inc."};

constexpr std::pair<const char*, int> usualTerms[] = {{"0", 0},   {"7", 7},   {"14", 14}, {"14", 14},
                                                      {"30", 30}, {"30", 30}, {"60", 60}};

QString digitsText(DemoRandom& random, int count)
{
  QString text;
  for (int i = 0; i < count; ++i) {
    text += QChar(u'0' + random.between(i == 0, 9));
  }
  return text;
}

// Columns in the order of the insert below, and what invoices need of the contractor.
struct ContragentDraft {
  QString name, bulstat, vatNo, country, town, postCode, address, contact, phone, email, currency, vatGroup, genGroup;
};

ContragentDraft bulgarianFirm(DemoRandom& random)
{
  const DemoPlace& place = demoPlace(random);
  ContragentDraft draft;
  draft.name = demoFirmName(random);
  draft.bulstat = demoBulstat(random);
  draft.vatNo = random.chance(85) ? QStringLiteral("BG") + draft.bulstat : QString();
  draft.country = QStringLiteral("България");
  draft.town = QString::fromUtf16(place.town);
  draft.postCode = QString::fromUtf16(place.postCode);
  draft.address = demoAddress(random);
  draft.contact = demoPersonName(random);
  draft.phone = random.chance(50) ? QStringLiteral("08%1").arg(digitsText(random, 8))
                                  : QString::fromUtf16(place.phoneCode) + u'/' + digitsText(random, 6);
  draft.email = demoLatin(draft.contact.section(u' ', 0, 0)) + u'@' +
                demoLatin(draft.name.section(u'“', 0, 0)) + QStringLiteral(".example");
  draft.vatGroup = QStringLiteral("BG");
  draft.genGroup = QStringLiteral("DOMESTIC");
  return draft;
}

ContragentDraft foreignFirm(DemoRandom& random)
{
  const ForeignFirm& of = foreignFirms[random.below(int(std::size(foreignFirms)))];
  const bool union_ = of.vatPrefix[0] != 0;
  ContragentDraft draft;
  draft.name = random.pick(foreignWords) + u' ' + random.pick(foreignWords) + u' ' + random.pick(foreignForms);
  draft.vatNo = union_ ? QString::fromUtf16(of.vatPrefix) + digitsText(random, 9) : QString();
  draft.country = QString::fromUtf16(of.country);
  draft.town = QString::fromUtf16(of.town);
  draft.address = QStringLiteral("P.O. Box ") + QString::number(random.between(100, 9999));
  draft.currency = QString::fromUtf16(of.currency);
  draft.email = QStringLiteral("office@") + demoLatin(draft.name.section(u' ', 0, 1)) + QStringLiteral(".example");
  draft.vatGroup = union_ ? QStringLiteral("EU") : QStringLiteral("EXPORT");
  draft.genGroup = draft.vatGroup;
  return draft;
}

ContragentDraft walkInCustomer()
{
  ContragentDraft draft;
  draft.name = QStringLiteral("Клиент на дребно");
  draft.country = QStringLiteral("България");
  draft.vatGroup = QStringLiteral("BG");
  draft.genGroup = QStringLiteral("DOMESTIC");
  return draft;
}

Variant textOrNone(const QString& text) { return text.isEmpty() ? Variant() : Variant(text); }

}  // namespace

void createDemoContragents(DemoScope& scope)
{
  DemoRandom& random = scope.random;
  RowInserter rows(scope.connection, QStringLiteral("N_Contragent"),
                   {"Id",
                    "Comp_Id",
                    "Code",
                    "Name",
                    "Bulstat",
                    "VATNo",
                    "Country",
                    "City",
                    "PostCode",
                    "Address",
                    "Contact",
                    "Phone",
                    "Email",
                    "PaymentTerms_Id",
                    "PaymentMethodCode",
                    "CreditLimit",
                    "Currency_Id",
                    "PriceGroup_Id",
                    "VATBusPostGroup_Id",
                    "GenBusPostGroup_Id",
                    "Inactive",
                    "C_Businessgroup_Id",
                    "C_User_Id",
                    "C_Datetime"});
  for (int i = 0; i < scope.contragentCount; ++i) {
    const bool retail = i == 0;
    const ContragentDraft draft =
        retail ? walkInCustomer() : random.chance(88) ? bulgarianFirm(random) : foreignFirm(random);
    const auto& [termsCode, termsDays] = usualTerms[retail ? 0 : random.below(int(std::size(usualTerms)))];
    const QString method = retail || termsDays == 0 ? QStringLiteral("CASH") : QStringLiteral("BANK");
    const int tier = retail ? 0 : random.below(10);  // 0-5 list price, 6-8 wholesale, 9 dealer
    const QString group = tier == 9 ? QStringLiteral("DEALER") : tier >= 6 ? QStringLiteral("WHOLESALE") : QString();
    const QString code = QString::number(10000 + i);
    const DemoContragent contragent{scope.id("N_Contragent", code),
                                    scope.id("N_VATBusPostGroup", draft.vatGroup),
                                    scope.id("N_GenBusPostGroup", draft.genGroup),
                                    scope.id("N_PaymentTerms", QString::fromLatin1(termsCode)),
                                    scope.id("N_PaymentMethod", method),
                                    draft.currency,
                                    termsDays,
                                    tier == 9 ? 85 : tier >= 6 ? 92 : 100};
    const bool inactive = i > 20 && random.chance(4);
    const qlonglong credit = termsDays == 0 ? 0 : random.between(5, 200) * 100 * amountScale;
    const Variant limit = retail ? Variant() : Variant(credit);
    rows.insert({contragent.id, scope.companyId, code, draft.name, textOrNone(draft.bulstat), textOrNone(draft.vatNo),
                 draft.country, textOrNone(draft.town), textOrNone(draft.postCode), textOrNone(draft.address),
                 textOrNone(draft.contact), textOrNone(draft.phone), textOrNone(draft.email), contragent.termsId,
                 contragent.methodId, limit, textOrNone(draft.currency),
                 group.isEmpty() ? Variant() : Variant(scope.id("N_PriceGroup", group)), contragent.vatBusGroupId,
                 contragent.genBusGroupId, int(inactive), scope.objects.first().id, QStringLiteral("SUPERVSR"),
                 scope.firstDay().startOfDay()});
    if (!inactive) {
      scope.contragents.append(contragent);
    }
  }
}

void createDemoRates(DemoScope& scope)
{
  RowInserter rows(scope.connection, QStringLiteral("N_CurrencyRate"),
                   {"Id", "Comp_Id", "Currency_Id", "RateDate", "Kind", "Rate"});
  const QDate first = scope.firstDay().addDays(-30);
  const auto insert = [&](const QString& currency, const QDate& day, double rate) {
    rows.insert({scope.id("N_CurrencyRate", currency + day.toString(Qt::ISODate)), scope.companyId, currency, day, 0,
                 qlonglong(scaled(rate))});
  };
  insert(QStringLiteral("EUR"), first, 1);
  insert(QStringLiteral("BGN"), first, 1 / levaForEuro);
  const std::pair<const char*, double> floating[] = {{"USD", 0.92}, {"GBP", 1.16}, {"CHF", 1.03}};
  for (const auto& [currency, middle] : floating) {
    double rate = middle;
    for (QDate day = first; day <= scope.options.lastDay; day = day.addDays(1)) {
      if (day.dayOfWeek() > 5) {
        continue;
      }
      const double step = (scope.random.between(-100, 100) / 100.0) * 0.004;
      rate += step * middle + (middle - rate) * 0.01;
      insert(QString::fromLatin1(currency), day, std::round(rate * 1e5) / 1e5);
    }
  }
}

}  // namespace kalvor::server
