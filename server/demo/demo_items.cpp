// Item groups, items with their measures, bar codes, prices and discounts.
#include "server/demo/demo_parts.h"
#include "server/load/row_inserter.h"

namespace kalvor::server {

namespace {

struct GroupSeed {
  const char* code;
  const char* name;
};
constexpr GroupSeed rootGroups[] = {{"1", "Хранителни стоки"}, {"2", "Книги и офис материали"}, {"3", "Домакинство"},
                                    {"4", "Инструменти"},      {"5", "Електроматериали"},       {"6", "Услуги"}};

// An item is a noun, a variant and a brand: every list is separated by "|".
struct RangeSeed {
  const char* code;
  const char* name;
  const char* nouns;
  const char* variants;
  const char* brands;
  const char* measure;
  const char* packMeasure;  // empty: sold only by the base measure
  int packSize;
  const char* vatGroup;
  const char* generalGroup;
  int lowestCents;
  int highestCents;
};
constexpr RangeSeed ranges[] = {
    {"11", "Напитки", "Минерална вода|Газирана вода|Сок от ябълка|Сок от портокал|Студен чай|Лимонада",
     "0,33 л|0,5 л|1 л|1,5 л|2 л", "Изворна|Планински кът|Свежест", "бр", "стек", 6, "S20", "FOOD", 35, 320},
    {"12", "Захарни изделия", "Шоколад млечен|Шоколад натурален|Вафли|Бисквити|Бонбони|Локум",
     "80 г|100 г|180 г|250 г|500 г", "Сладка мечта|Калина|Звездица", "бр", "кашон", 24, "S20", "FOOD", 60, 780},
    {"13", "Пакетирани храни", "Ориз|Боб|Леща|Брашно|Захар|Спагети|Сол", "400 г|500 г|1 кг|5 кг",
     "Златно зърно|Добруджа|Домашно", "бр", "кашон", 12, "S20", "FOOD", 70, 650},
    {"14", "Плодове и ядки", "Ябълки|Домати|Орехи|Бадеми|Стафиди|Сушени сливи",
     "първо качество|второ качество|насипно", "Градина|Родопа", "кг", "", 0, "S20", "FOOD", 110, 1450},
    {"21", "Книги", "Учебник|Сборник задачи|Речник|Атлас|Роман|Детска книга",
     "I клас|III клас|V клас|VII клас|X клас", "Хоризонт|Слово|Знание", "бр", "кашон", 20, "S9", "GOODS", 450, 2900},
    {"22", "Хартия и тетрадки", "Копирна хартия|Тетрадка|Бележник|Пликове|Самозалепващи листчета",
     "A4|A5|A3|80 листа|500 листа", "Бял лист|Офис плюс|Акцент", "пак", "кашон", 10, "S20", "GOODS", 80, 1150},
    {"23", "Пишещи средства", "Химикалка|Молив|Маркер|Тънкописец|Коректор|Флумастер",
     "син|черен|червен|зелен|комплект 6 цвята", "Линия|Графит|Перо", "бр", "кашон", 50, "S20", "GOODS", 25, 690},
    {"24", "Папки и класьори", "Класьор|Папка с ластик|Джоб прозрачен|Картонена папка|Кутия архивна",
     "5 см|8 см|100 бр|цветна", "Архив|Офис плюс", "бр", "кашон", 20, "S20", "GOODS", 30, 540},
    {"31", "Почистващи препарати", "Препарат за съдове|Прах за пране|Омекотител|Белина|Препарат за под",
     "0,5 л|1 л|3 л|5 л", "Блясък|Чист дом|Бяла роза", "бр", "кашон", 12, "S20", "GOODS", 95, 1890},
    {"32", "Хартия за дома", "Тоалетна хартия|Кухненска ролка|Салфетки|Носни кърпи", "2 бр|4 бр|8 бр|16 бр",
     "Мека|Нежност|Бял лист", "пак", "кашон", 12, "S20", "GOODS", 70, 860},
    {"33", "Съдове", "Тенджера|Тиган|Чиния|Чаша|Купа|Нож кухненски", "малка|средна|голяма|комплект",
     "Огнище|Порцелан|Домашна", "бр", "кашон", 6, "S20", "GOODS", 190, 5900},
    {"41", "Ръчни инструменти", "Чук|Отвертка|Клещи|Гаечен ключ|Ножовка|Ролетка", "100 мм|150 мм|250 мм|300 мм",
     "Майстор|Стомана", "бр", "", 0, "S20", "GOODS", 320, 3900},
    {"42", "Електроинструменти", "Бормашина|Ъглошлайф|Винтоверт|Прободен трион|Перфоратор", "500 W|710 W|900 W|18 V",
     "Майстор|Волт", "бр", "", 0, "S20", "GOODS", 3900, 28900},
    {"43", "Крепежи", "Винт|Болт|Гайка|Дюбел|Пирон|Шайба", "3x30|4x40|5x60|6x80|8x100", "Стомана|Резба", "бр", "пак",
     100, "S20", "GOODS", 3, 85},
    {"51", "Осветление", "Крушка LED|Лампа настолна|Прожектор|Лента LED|Аплик", "5 W|9 W|12 W|20 W|50 W",
     "Лъч|Волт|Зора", "бр", "кашон", 10, "S20", "GOODS", 180, 6900},
    {"52", "Кабели", "Кабел захранващ|Проводник|Кабел мрежов|Шнур удължител", "2x1,5|3x1,5|3x2,5|5x4", "Мед|Волт",
     "м", "", 0, "S20", "GOODS", 45, 520},
    {"61", "Доставка и монтаж", "Доставка|Монтаж|Профилактика|Консултация|Обучение",
     "в града|извън града|почивен ден", "", "час", "", 0, "S20", "SERVICES", 1500, 6000},
    {"62", "Застраховки и такси", "Застраховка на пратка|Такса обработка|Такса съхранение", "до 500|до 1000|над 1000",
     "", "бр", "", 0, "EXEMPT", "SERVICES", 200, 2500}};

constexpr int pricesIncludingPack = 95;  // percent of the single price, in a pack
constexpr int tenPacks = 90;             // the same, of ten packs or more

QString eanOf(const QString& code)
{
  const QString digits = QStringLiteral("380") + code.rightJustified(9, u'0');
  int sum = 0;
  for (int i = 0; i < digits.size(); ++i) {
    sum += digits.at(i).digitValue() * (i % 2 ? 3 : 1);
  }
  return digits + QString::number((10 - sum % 10) % 10);
}

class ItemWriter {
 public:
  explicit ItemWriter(DemoScope& scope)
      : scope_(scope),
        items_(scope.connection, QStringLiteral("N_Item"),
               {"Id", "Comp_Id", "Code", "Name", "ItemGroup_Id", "Type", "Measure_Id", "VATProdPostGroup_Id",
                "GenProdPostGroup_Id", "UnitPrice", "UnitCost", "Inactive", "C_Businessgroup_Id", "C_User_Id",
                "C_Datetime"}),
        measures_(scope.connection, QStringLiteral("N_ItemMeasure"),
                  {"Id", "Comp_Id", "Item_Id", "Measure_Id", "QtyPerUnitOfMeasure"}),
        prices_(scope.connection, QStringLiteral("N_ItemPrice"),
                {"Id", "Comp_Id", "Side", "Item_Id", "PriceGroup_Id", "Measure_Id", "MinQuantity", "StartDate",
                 "UnitPrice", "PriceIncludingVAT", "AllowInvoiceDisc"}),
        discounts_(scope.connection, QStringLiteral("N_ItemDiscount"),
                   {"Id", "Comp_Id", "Side", "Item_Id", "ItemGroup_Id", "Contragent_Id", "PriceGroup_Id", "MinQuantity",
                    "StartDate", "EndDate", "DiscountPercent"}),
        crossRefs_(scope.connection, QStringLiteral("N_ItemCrossRef"),
                   {"Id", "Comp_Id", "Item_Id", "Measure_Id", "Cross_Ref_Type", "Cross_Ref_No"})
  {
  }

  void write(const RangeSeed& range, const QString& code, const QString& name);
  void writeGroupDiscount(const RangeSeed& range);

 private:
  void writeMeasures(const RangeSeed& range, const QString& item);
  void writePrices(const RangeSeed& range, const QString& item, qint64 price, qint64 cost);
  void writePrice(int side, const QString& item, const QString& priceGroup, const QString& measure, qint64 quantity,
                  qint64 price);

  DemoScope& scope_;
  RowInserter items_, measures_, prices_, discounts_, crossRefs_;
};

void ItemWriter::write(const RangeSeed& range, const QString& code, const QString& name)
{
  DemoRandom& random = scope_.random;
  const qint64 cents = random.between(range.lowestCents, range.highestCents);
  const qint64 price = cents * (amountScale / 100);
  const qint64 cost = cents * random.between(60, 82) / 100 * (amountScale / 100);
  const bool service = QLatin1StringView(range.generalGroup) == u"SERVICES";
  const QString id = scope_.id("N_Item", code);
  const QString measureCode = QString::fromUtf8(range.measure);
  const DemoItem item{code, name, scope_.id("N_Measure", measureCode),
                      scope_.id("N_VATProdPostGroup", QString::fromLatin1(range.vatGroup)),
                      scope_.id("N_GenProdPostGroup", QString::fromLatin1(range.generalGroup)), price, service ? 3 : 1,
                      measureCode == u"кг" || measureCode == u"м"};
  const bool inactive = random.chance(2);
  items_.insert({id, scope_.companyId, code, name, scope_.id("N_ItemGroup", QString::fromLatin1(range.code)), item.type,
                 item.measureId, item.vatProdGroupId, item.genProdGroupId, price, service ? 0 : cost, int(inactive),
                 scope_.objects.first().id, QStringLiteral("SUPERVSR"), scope_.firstDay().startOfDay()});
  writeMeasures(range, id);
  writePrices(range, id, price, cost);
  if (!service) {
    crossRefs_.insert({scope_.id("N_ItemCrossRef", code), scope_.companyId, id, item.measureId, 1, eanOf(code)});
  }
  if (random.chance(6)) {
    discounts_.insert({scope_.id("N_ItemDiscount", code), scope_.companyId, 1, id, {}, {}, {}, 10 * amountScale,
                       scope_.firstDay(), {}, random.between(2, 10) * amountScale});
  }
  if (!inactive) {
    scope_.items.append(item);
  }
}

void ItemWriter::writeMeasures(const RangeSeed& range, const QString& item)
{
  const auto write = [&](const char* measure, int units) {
    const QString id = scope_.id("N_Measure", QString::fromUtf8(measure));
    measures_.insert(
        {scope_.id("N_ItemMeasure", item + id), scope_.companyId, item, id, qlonglong(units) * amountScale});
  };
  write(range.measure, 1);
  if (range.packSize > 0) {
    write(range.packMeasure, range.packSize);
  }
}

void ItemWriter::writePrice(int side, const QString& item, const QString& priceGroup, const QString& measure,
                            qint64 quantity, qint64 price)
{
  const QString key = item + QString::number(side) + priceGroup + measure + QString::number(quantity);
  prices_.insert({scope_.id("N_ItemPrice", key), scope_.companyId, side, item,
                  priceGroup.isEmpty() ? Variant() : Variant(scope_.id("N_PriceGroup", priceGroup)), measure, quantity,
                  scope_.firstDay(), price, 0, 1});
}

void ItemWriter::writePrices(const RangeSeed& range, const QString& item, qint64 price, qint64 cost)
{
  const QString measure = scope_.id("N_Measure", QString::fromUtf8(range.measure));
  const auto percent = [&](qint64 amount, int of) { return scaled(roundUp(2, unscaled(amount) * of / 100)); };
  writePrice(1, item, {}, measure, 0, price);
  writePrice(1, item, QStringLiteral("WHOLESALE"), measure, 0, percent(price, 92));
  writePrice(1, item, QStringLiteral("DEALER"), measure, 0, percent(price, 85));
  if (range.packSize > 0) {
    const QString pack = scope_.id("N_Measure", QString::fromUtf8(range.packMeasure));
    writePrice(1, item, {}, pack, 0, percent(price * range.packSize, pricesIncludingPack));
    writePrice(1, item, {}, pack, 10 * amountScale, percent(price * range.packSize, tenPacks));
  }
  if (scope_.random.chance(10)) {
    writePrice(1, item, {}, measure, 50 * amountScale, percent(price, 95));
  }
  if (cost > 0) {
    writePrice(0, item, {}, measure, 0, cost);
  }
}

// A spring promotion every year on some ranges, for one price group.
void ItemWriter::writeGroupDiscount(const RangeSeed& range)
{
  const int lastYear = scope_.options.lastDay.year();
  for (int year = scope_.firstDay().year(); year <= lastYear; ++year) {
    const QString key = QString::fromLatin1(range.code) + QString::number(year);
    discounts_.insert({scope_.id("N_ItemDiscount", key), scope_.companyId, 1, {},
                       scope_.id("N_ItemGroup", QString::fromLatin1(range.code)), {},
                       scope_.id("N_PriceGroup", QStringLiteral("WHOLESALE")), 0, QDate(year, 3, 1), QDate(year, 4, 30),
                       3 * amountScale});
  }
}

void writeGroups(DemoScope& scope)
{
  RowInserter groups(scope.connection, QStringLiteral("N_ItemGroup"),
                     {"Id", "Comp_Id", "Code", "Name", "Parent_Id", "SubIndex"});
  int index = 0;
  for (const GroupSeed& seed : rootGroups) {
    const QString code = QString::fromLatin1(seed.code);
    groups.insert({scope.id("N_ItemGroup", code), scope.companyId, code, QString::fromUtf8(seed.name), {}, index++});
  }
  for (const RangeSeed& range : ranges) {
    const QString code = QString::fromLatin1(range.code);
    groups.insert({scope.id("N_ItemGroup", code), scope.companyId, code, QString::fromUtf8(range.name),
                   scope.id("N_ItemGroup", code.left(1)), code.mid(1).toInt() - 1});
  }
}

}  // namespace

// As many items of every range as its share of all that could be named.
void createDemoItems(DemoScope& scope)
{
  writeGroups(scope);
  ItemWriter writer(scope);
  const auto listOf = [](const char* text) { return QString::fromUtf8(text).split(u'|'); };
  const auto namesIn = [&](const RangeSeed& range) {
    return int(listOf(range.nouns).size() * listOf(range.variants).size() * listOf(range.brands).size());
  };
  int allNames = 0;
  for (const RangeSeed& range : ranges) {
    allNames += namesIn(range);
  }
  const int wanted = std::min(scope.itemCount, allNames);
  int namesBefore = 0;
  int rangeNumber = 0;
  for (const RangeSeed& range : ranges) {
    const QStringList nouns = listOf(range.nouns);
    const QStringList variants = listOf(range.variants);
    const QStringList brands = listOf(range.brands);
    const int first = wanted * namesBefore / allNames;
    namesBefore += namesIn(range);
    const int count = wanted * namesBefore / allNames - first;
    for (int i = 0; i < count; ++i) {
      const QString brand = brands.at(i / int(nouns.size() * variants.size()));
      const QString name = nouns.at(i % nouns.size()) + u' ' + variants.at(i / nouns.size() % variants.size()) +
                           (brand.isEmpty() ? QString() : QStringLiteral(" „%1“").arg(brand));
      writer.write(range, QString::fromLatin1(range.code) + QString::number(i + 1).rightJustified(4, u'0'), name);
    }
    if (rangeNumber++ % 3 == 0) {
      writer.writeGroupDiscount(range);
    }
  }
}

}  // namespace kalvor::server
