#include "server/demo/demo_names.h"

namespace kalvor::server {

namespace {

constexpr const char16_t* maleNames[] = {
    u"Александър", u"Андрей",  u"Борис",   u"Валентин", u"Васил",   u"Виктор", u"Владимир", u"Георги",  u"Даниел",
    u"Димитър",    u"Емил",    u"Живко",   u"Иван",     u"Ивайло",  u"Калоян", u"Кирил",    u"Красимир", u"Любомир",
    u"Мартин",     u"Милен",   u"Младен",  u"Николай",  u"Огнян",   u"Павел",  u"Петър",    u"Пламен",  u"Радослав",
    u"Росен",      u"Светослав", u"Стефан", u"Стоян",   u"Тодор",   u"Христо", u"Цветан",   u"Явор",    u"Янко"};
constexpr const char16_t* femaleNames[] = {
    u"Албена",  u"Анелия",   u"Ваня",    u"Венета",   u"Весела",   u"Виолета", u"Галина",  u"Гергана", u"Даниела",
    u"Десислава", u"Диана",  u"Елена",   u"Елица",    u"Живка",    u"Ивелина", u"Йоана",   u"Калина",  u"Катя",
    u"Лилия",   u"Маргарита", u"Мария",  u"Милена",   u"Надежда",  u"Невена",  u"Петя",    u"Радка",   u"Росица",
    u"Румяна",  u"Силвия",   u"Снежана", u"Стела",    u"Теодора",  u"Цветелина", u"Юлия",  u"Яна",     u"Ярослава"};
constexpr const char16_t* familyNames[] = {
    u"Ангелов", u"Атанасов", u"Борисов", u"Василев",  u"Георгиев", u"Гочев",   u"Денев",   u"Димитров", u"Добрев",
    u"Донков",  u"Желев",    u"Златев",  u"Иванов",   u"Илиев",    u"Йорданов", u"Калчев", u"Колев",   u"Костов",
    u"Кръстев", u"Маринов",  u"Минчев",  u"Михайлов", u"Младенов", u"Найденов", u"Недялков", u"Николов", u"Павлов",
    u"Пенев",   u"Петров",   u"Попов",   u"Радев",    u"Русев",    u"Савов",   u"Симеонов", u"Стоянов", u"Тодоров",
    u"Узунов",  u"Филипов",  u"Христов", u"Цанков",   u"Чавдаров", u"Шишков",  u"Янев"};
constexpr const char16_t* firmWords[] = {
    u"Агро",   u"Алфа",   u"Балкан", u"Бряг",   u"Вест",  u"Вита",  u"Гама",  u"Дунав",  u"Еко",   u"Елит",
    u"Зора",   u"Изток",  u"Импулс", u"Интер",  u"Искър", u"Корал", u"Лозен", u"Марица", u"Метал", u"Мизия",
    u"Нова",   u"Орбита", u"Перла",  u"Пирин",  u"Прима", u"Родопи", u"Сигма", u"Тракия", u"Универс", u"Янтра"};
constexpr const char16_t* firmTrades[] = {
    u"Стил",   u"Трейд", u"Строй",  u"Груп",   u"Маркет", u"Транс", u"Пласт", u"Инвест", u"Сервиз", u"Текс",
    u"Мебел",  u"Фууд",  u"Консулт", u"Дизайн", u"Логистик"};
constexpr const char16_t* firmForms[] = {u"ООД", u"ООД", u"ЕООД", u"ЕООД", u"ЕООД", u"АД", u"ЕАД"};
constexpr const char16_t* streets[] = {
    u"ул. „Васил Левски“", u"ул. „Христо Ботев“",     u"бул. „България“",       u"ул. „Цар Симеон“",
    u"ул. „Иван Вазов“",   u"бул. „Трети март“",      u"ул. „Шипка“",           u"ул. „Раковски“",
    u"ул. „Свобода“",      u"бул. „Цар Освободител“", u"ул. „Кирил и Методий“", u"ул. „Стара планина“",
    u"ул. „Пейо Яворов“",  u"ул. „Лозенград“",        u"ул. „Опълченска“"};

constexpr DemoPlace places[] = {
    {u"София", u"1000", u"02"},          {u"София", u"1407", u"02"},          {u"София", u"1784", u"02"},
    {u"Пловдив", u"4000", u"032"},       {u"Пловдив", u"4003", u"032"},       {u"Варна", u"9000", u"052"},
    {u"Бургас", u"8000", u"056"},        {u"Русе", u"7000", u"082"},          {u"Стара Загора", u"6000", u"042"},
    {u"Плевен", u"5800", u"064"},        {u"Сливен", u"8800", u"044"},        {u"Добрич", u"9300", u"058"},
    {u"Шумен", u"9700", u"054"},         {u"Перник", u"2300", u"076"},        {u"Хасково", u"6300", u"038"},
    {u"Ямбол", u"8600", u"046"},         {u"Пазарджик", u"4400", u"034"},     {u"Благоевград", u"2700", u"073"},
    {u"Велико Търново", u"5000", u"062"}, {u"Враца", u"3000", u"092"},        {u"Габрово", u"5300", u"066"},
    {u"Видин", u"3700", u"094"},         {u"Асеновград", u"4230", u"0331"},   {u"Казанлък", u"6100", u"0431"},
    {u"Кърджали", u"6600", u"0361"},     {u"Монтана", u"3400", u"096"},       {u"Смолян", u"4700", u"0301"},
    {u"Ловеч", u"5500", u"068"},         {u"Разград", u"7200", u"084"},       {u"Дупница", u"2600", u"0701"}};

struct LatinLetter {
  char16_t cyrillic;
  const char16_t* latin;
};
constexpr LatinLetter latinLetters[] = {
    {u'а', u"a"}, {u'б', u"b"}, {u'в', u"v"}, {u'г', u"g"}, {u'д', u"d"},  {u'е', u"e"},  {u'ж', u"zh"}, {u'з', u"z"},
    {u'и', u"i"}, {u'й', u"y"}, {u'к', u"k"}, {u'л', u"l"}, {u'м', u"m"},  {u'н', u"n"},  {u'о', u"o"},  {u'п', u"p"},
    {u'р', u"r"}, {u'с', u"s"}, {u'т', u"t"}, {u'у', u"u"}, {u'ф', u"f"},  {u'х', u"h"},  {u'ц', u"ts"}, {u'ч', u"ch"},
    {u'ш', u"sh"}, {u'щ', u"sht"}, {u'ъ', u"a"}, {u'ь', u"y"}, {u'ю', u"yu"}, {u'я', u"ya"}};

}  // namespace

QString demoPersonName(DemoRandom& random)
{
  const bool female = random.chance(50);
  const QString first = female ? random.pick(femaleNames) : random.pick(maleNames);
  const QString family = random.pick(familyNames);
  return first + u' ' + family + (female ? QStringLiteral("а") : QString());
}

QString demoFirmName(DemoRandom& random)
{
  if (random.chance(12)) {
    return QStringLiteral("ЕТ „%1 – %2“").arg(demoPersonName(random), random.pick(firmWords));
  }
  const QString word = random.pick(firmWords);
  const QString trade = random.pick(firmTrades);
  const QString name = random.chance(35) ? word + u' ' + trade + u' ' + QString::number(random.between(90, 99))
                                         : word + u' ' + trade;
  return QStringLiteral("„%1“ %2").arg(name, random.pick(firmForms));
}

const DemoPlace& demoPlace(DemoRandom& random) { return places[random.skewedBelow(int(std::size(places)))]; }

QString demoAddress(DemoRandom& random)
{
  return random.pick(streets) + QStringLiteral(" №") + QString::number(random.between(1, 180));
}

int bulstatCheckDigit(QStringView digits)
{
  const auto weighted = [&](int shift) {
    int sum = 0;
    for (int i = 0; i < 8; ++i) {
      sum += digits.at(i).digitValue() * (i + 1 + shift);
    }
    return sum % 11;
  };
  const int first = weighted(0);
  return first < 10 ? first : weighted(2) % 10;
}

QString demoBulstat(DemoRandom& random)
{
  const QString digits = QString::number(random.between(10000000, 20999999));
  return digits + QString::number(bulstatCheckDigit(digits));
}

QString demoLatin(const QString& text)
{
  QString latin;
  for (const QChar c : text.toLower()) {
    if (c.unicode() < 128 && c.isLetterOrNumber()) {
      latin += c;
    }
    for (const LatinLetter& letter : latinLetters) {
      if (c == letter.cyrillic) {
        latin += QString::fromUtf16(letter.latin);
      }
    }
  }
  return latin;
}

}  // namespace kalvor::server
