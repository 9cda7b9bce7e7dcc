// Company, objects, groups, VAT, payment and numbering: what is set up once.
#include "server/demo/demo_names.h"
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

struct CodedName {
  const char* code;
  const char* name;
};

constexpr CodedName measures[] = {
    {"бр", "Брой"},       {"кг", "Килограм"},        {"л", "Литър"},  {"м", "Метър"}, {"м2", "Квадратен метър"},
    {"пак", "Пакет"},     {"стек", "Стек"},          {"кашон", "Кашон"}, {"к-т", "Комплект"}, {"час", "Час"}};
constexpr CodedName vatBusGroups[] = {
    {"BG", "Контрагенти в България"}, {"EU", "Контрагенти в Европейския съюз"}, {"EXPORT", "Контрагенти извън ЕС"}};
constexpr CodedName vatProdGroups[] = {
    {"S20", "Стандартна ставка 20 %"}, {"S9", "Намалена ставка 9 %"}, {"S0", "Нулева ставка"},
    {"EXEMPT", "Освободени доставки"}};
constexpr CodedName genBusGroups[] = {
    {"DOMESTIC", "Вътрешен пазар"}, {"EU", "Вътреобщностни сделки"}, {"EXPORT", "Внос и износ"}};
constexpr CodedName genProdGroups[] = {{"GOODS", "Стоки"}, {"FOOD", "Хранителни стоки"}, {"SERVICES", "Услуги"}};
constexpr CodedName paymentMethods[] = {
    {"CASH", "В брой"}, {"BANK", "По банков път"}, {"CARD", "С карта"}, {"COD", "Наложен платеж"}};
constexpr CodedName priceGroups[] = {{"WHOLESALE", "Търговци на едро"}, {"DEALER", "Дистрибутори"}};
struct Terms {
  const char* code;
  const char* name;
  int days;
};
constexpr Terms paymentTerms[] = {{"0", "Веднага", 0},      {"7", "До 7 дни", 7},   {"14", "До 14 дни", 14},
                                  {"30", "До 30 дни", 30}, {"60", "До 60 дни", 60}};

struct VatCase {
  const char* business;
  const char* product;
  int percent;
  int calculation;
};
constexpr VatCase vatCases[] = {
    {"BG", "S20", 20, 0},    {"BG", "S9", 9, 0},     {"BG", "S0", 0, 0},     {"BG", "EXEMPT", 0, 2},
    {"EU", "S20", 0, 1},     {"EU", "S9", 0, 1},     {"EU", "S0", 0, 1},     {"EU", "EXEMPT", 0, 2},
    {"EXPORT", "S20", 0, 0}, {"EXPORT", "S9", 0, 0}, {"EXPORT", "S0", 0, 0}, {"EXPORT", "EXEMPT", 0, 2}};

struct ObjectSeed {
  const char* company;
  const char* id;
  const char* code;
  const char* name;
  const char* town;
  const char* prefix;
  const char* seller;
  int share;
};
constexpr ObjectSeed objectSeeds[] = {
    {"1", "1", "SOF", "Магазин София", "София", "1", "CLERK", 45},
    {"1", "2", "PLV", "Магазин Пловдив", "Пловдив", "2", "CASHIER", 35},
    {"1", "3", "OFFICE", "Централен офис", "София", "3", "SUPERVSR", 20},
    {"2", "4", "SHOP", "Магазин", "Варна", "1", "OWNER", 100},
    {"3", "5", "OFFICE", "Офис", "Русе", "1", "OWNER", 100}};

template <size_t count>
void insertCoded(DemoScope& scope, const char* table, const CodedName (&rows)[count])
{
  RowInserter inserter(scope.connection, QString::fromLatin1(table), {"Id", "Comp_Id", "Code", "Name"});
  for (const CodedName& row : rows) {
    const QString code = QString::fromUtf8(row.code);
    inserter.insert({scope.id(table, code), scope.companyId, code, QString::fromUtf8(row.name)});
  }
}

void insertCompany(DemoScope& scope)
{
  RowInserter company(scope.connection, QStringLiteral("N_Company"),
                      {"Id", "Name", "Bulstat", "VATNo", "City", "Address", "Manager"});
  const QString bulstat = demoBulstat(scope.random);
  company.insert({scope.companyId, scope.companyName, bulstat, QStringLiteral("BG") + bulstat,
                  scope.companyId == u"1" ? QStringLiteral("София") : QStringLiteral("Варна"),
                  demoAddress(scope.random), demoPersonName(scope.random)});
}

void insertPayment(DemoScope& scope)
{
  insertCoded(scope, "N_PaymentMethod", paymentMethods);
  RowInserter terms(scope.connection, QStringLiteral("N_PaymentTerms"),
                    {"Id", "Comp_Id", "Code", "Name", "DueDateCalculation"});
  for (const Terms& row : paymentTerms) {
    const QString code = QString::fromLatin1(row.code);
    terms.insert({scope.id("N_PaymentTerms", code), scope.companyId, code, QString::fromUtf8(row.name), row.days});
  }
}

void insertVatSetup(DemoScope& scope)
{
  RowInserter setup(scope.connection, QStringLiteral("G_VATPostingSetup"),
                    {"Id", "Comp_Id", "VATBus_PostingGroup", "VATProd_PostingGroup", "VATPercent", "VATCalculationType",
                     "SalesVATLedger", "PurchVATLedger"});
  for (const VatCase& row : vatCases) {
    const QString business = QString::fromLatin1(row.business);
    const QString product = QString::fromLatin1(row.product);
    setup.insert({scope.id("G_VATPostingSetup", business + product), scope.companyId,
                  scope.id("N_VATBusPostGroup", business), scope.id("N_VATProdPostGroup", product),
                  qlonglong(row.percent) * amountScale, row.calculation, 1, 1});
  }
}

void insertSeries(DemoScope& scope, const QString& code, const QString& name, const QString& prefix, int digits,
                  int kind)
{
  RowInserter series(scope.connection, QStringLiteral("N_Series"),
                     {"Id", "Comp_Id", "Code", "Name", "Prefix", "LastNo", "MaxNo", "ManualNo", "Kind"});
  const qlonglong largest = QString(digits, u'9').toLongLong();
  series.insert({scope.id("N_Series", code), scope.companyId, code, name, prefix, 0, largest, 0, kind});
}

void insertSubDocument(DemoScope& scope, const QString& code, const QString& name, const QString& series,
                       const char* method)
{
  RowInserter documents(
      scope.connection, QStringLiteral("N_SubDocument"),
      {"Id", "Comp_Id", "Code", "Name", "SaleOrPurchase", "Series_Id", "Post_Series_Id", "PaymentMethod"});
  documents.insert({scope.id("N_SubDocument", code), scope.companyId, code, name, 0, scope.id("N_Series", series),
                    scope.id("N_Series", QStringLiteral("POST")),
                    scope.id("N_PaymentMethod", QString::fromLatin1(method))});
}

// Every object numbers its invoices in a range of its own, so that a number is never given twice.
void insertObjects(DemoScope& scope)
{
  RowInserter objects(scope.connection, QStringLiteral("N_BusinessGroup"),
                      {"Id", "Comp_Id", "Code", "Name", "City", "Address"});
  RowInserter operations(scope.connection, QStringLiteral("N_CashBankOperation"),
                         {"Id", "Comp_Id", "BusinessGroup_Id", "PaymentMethod_Id", "Name", "DirectPay"});
  for (const ObjectSeed& seed : objectSeeds) {
    if (scope.companyId != QLatin1StringView(seed.company)) {
      continue;
    }
    const QString id = QString::fromLatin1(seed.id);
    const QString code = QString::fromLatin1(seed.code);
    const QString name = QString::fromUtf8(seed.name);
    objects.insert({id, scope.companyId, code, name, QString::fromUtf8(seed.town), demoAddress(scope.random)});
    for (const CodedName& method : paymentMethods) {
      const QString methodCode = QString::fromLatin1(method.code);
      operations.insert({scope.id("N_CashBankOperation", id + methodCode), scope.companyId, id,
                         scope.id("N_PaymentMethod", methodCode), QString::fromUtf8(method.name),
                         int(methodCode == u"CASH")});
    }
    const QString prefix = QString::fromLatin1(seed.prefix);
    insertSeries(scope, QStringLiteral("INV-") + code, QStringLiteral("Фактури, ") + name, prefix, 9, 0);
    insertSubDocument(scope, QStringLiteral("INV-") + code, QStringLiteral("Фактура, ") + name,
                      QStringLiteral("INV-") + code, "BANK");
    scope.objects.append({id, scope.id("N_SubDocument", QStringLiteral("INV-") + code),
                          scope.id("N_Series", QStringLiteral("INV-") + code), prefix, QString::fromLatin1(seed.seller),
                          seed.share, 0});
  }
}

void insertSetup(DemoScope& scope)
{
  RowInserter company(scope.connection, QStringLiteral("C_CompanySetup"),
                      {"Id", "CheckBulstat", "CheckTaxNo", "PrecisionAmount", "PrecisionPrice", "Currency_LCY"});
  company.insert({scope.companyId, 1, 1, 2, 5, QStringLiteral("EUR")});
  RowInserter sales(scope.connection, QStringLiteral("C_SalesSetup"),
                    {"Id", "ChangeCalculation", "BusinessGroup_Id", "VATBusPostGroup_Id", "VATProdPostGroup_Id",
                     "GenBusPostGroup_Id", "GenProdPostGroup_Id", "Measure_Id", "PaymentTerms_Id", "PaymentMethod_Id",
                     "SubDocument_Id"});
  sales.insert({scope.companyId, 1, scope.objects.first().id, scope.id("N_VATBusPostGroup", QStringLiteral("BG")),
                scope.id("N_VATProdPostGroup", QStringLiteral("S20")),
                scope.id("N_GenBusPostGroup", QStringLiteral("DOMESTIC")),
                scope.id("N_GenProdPostGroup", QStringLiteral("GOODS")), scope.id("N_Measure", QStringLiteral("бр")),
                scope.id("N_PaymentTerms", QStringLiteral("14")), scope.id("N_PaymentMethod", QStringLiteral("BANK")),
                scope.objects.first().subDocumentId});
}

}  // namespace

void createDemoSetup(DemoScope& scope)
{
  insertCompany(scope);
  insertCoded(scope, "N_Measure", measures);
  insertCoded(scope, "N_VATBusPostGroup", vatBusGroups);
  insertCoded(scope, "N_VATProdPostGroup", vatProdGroups);
  insertCoded(scope, "N_GenBusPostGroup", genBusGroups);
  insertCoded(scope, "N_GenProdPostGroup", genProdGroups);
  insertCoded(scope, "N_PriceGroup", priceGroups);
  insertVatSetup(scope);
  insertPayment(scope);
  insertSeries(scope, QStringLiteral("ABS"), QStringLiteral("Абсолютни номера"), {}, 10, 1);
  insertSeries(scope, QStringLiteral("POST"), QStringLiteral("Осчетоводени документи"), QStringLiteral("P"), 9, 0);
  insertObjects(scope);
  insertSetup(scope);
  createDemoPostingSetup(scope);
  for (const char* code : {"кг", "л", "м", "м2"}) {
    scope.connection.execute(QStringLiteral("UPDATE N_Measure SET Decimals = 3 WHERE Id = ?"),
                             {scope.id("N_Measure", QString::fromUtf8(code))});
  }
  scope.defaults = readCompanyDefaults(scope.connection, scope.companyId).value();
}

}  // namespace kalvor::server
