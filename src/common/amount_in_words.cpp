#include "common/amount_in_words.h"

#include <array>
#include <cmath>

#include "common/rounding.h"
#include "data/data_error.h"

namespace kalvor {
namespace {

enum class Gender : quint8 { Neuter, Masculine, Feminine };

constexpr std::array<std::array<QStringView, 3>, 10> digitWords = {{
    {u"", u"", u""},
    {u"едно", u"един", u"една"},
    {u"две", u"два", u"две"},
    {u"три", u"три", u"три"},
    {u"четири", u"четири", u"четири"},
    {u"пет", u"пет", u"пет"},
    {u"шест", u"шест", u"шест"},
    {u"седем", u"седем", u"седем"},
    {u"осем", u"осем", u"осем"},
    {u"девет", u"девет", u"девет"},
}};

// Groups of three digits above the last, with what they are called.
struct GroupName {
  qint64 size;
  Gender gender;
  QStringView one;  // the whole text of exactly one
  QStringView many;
};
constexpr GroupName groupNames[] = {
    {1'000'000'000'000, Gender::Masculine, u"един трилион ", u" трилиона "},
    {1'000'000'000, Gender::Masculine, u"един милиард ", u" милиарда "},
    {1'000'000, Gender::Masculine, u"един милион ", u" милиона "},
    {1'000, Gender::Feminine, u"хиляда ", u" хиляди "},
};

constexpr long double firstNotSpelled = 1e15L;
const QString andWord = QStringLiteral(" и ");

QString DigitWord(int digit, Gender gender) { return digitWords[size_t(digit)][size_t(gender)].toString(); }

QString hundredsText(int hundreds)
{
  if (hundreds == 0)
    return {};
  if (hundreds == 1)
    return QStringLiteral("сто ");
  return DigitWord(hundreds, Gender::Feminine) + (hundreds < 4 ? QStringLiteral("ста ") : QStringLiteral("стотин "));
}

QString teenText(int units)
{
  if (units == 0)
    return QStringLiteral("десет");
  if (units == 1)
    return QStringLiteral("единадесет");
  return DigitWord(units, Gender::Masculine) + QStringLiteral("надесет");
}

// 0 to 999. A blank follows the hundreds and another one precedes "и", so there are two in "сто  и пет".
QString Group(int number, Gender gender)
{
  const int tens = number / 10 % 10;
  const int units = number % 10;
  QString text = hundredsText(number / 100);
  if (tens == 1)
    return text + (text.isEmpty() ? QString() : andWord) + teenText(units);
  if (tens == 0) {
    if (!text.isEmpty() && units > 0)
      text += andWord;
  } else {
    const QString word = DigitWord(tens, Gender::Masculine) + QStringLiteral("десет");
    if (units > 0)
      text += word + andWord;
    else
      text += text.isEmpty() ? word : QStringLiteral("и ") + word;
  }
  return text + DigitWord(units, gender);
}

bool takesAnd(int rest) { return rest < 10 || (rest < 100 && rest % 10 == 0) || rest % 100 == 0; }

QString unitsInWords(qint64 units)
{
  if (units == 0)
    return QStringLiteral("нула ");
  QString text;
  for (const GroupName& name : groupNames) {
    const int count = int(units / name.size % 1000);
    if (count == 1)
      text += name.one;
    else if (count > 1)
      text += Group(count, name.gender) + name.many.toString();
  }
  if (const int rest = int(units % 1000); rest > 0) {
    if (units > 999 && takesAnd(rest))
      text += QStringLiteral("и ");
    text += Group(rest, Gender::Masculine) + u' ';
  }
  return text;
}

}  // namespace

QString NumberToText(double Value, const QString& Currency)
{
  if (!std::isfinite(Value))
    throw DataError(QStringLiteral("Сумата не е число и не може да бъде изписана с думи."));
  const long double rounded = RoundUp(std::fabs(static_cast<long double>(Value)), 2);
  long double whole = 0;
  const qint64 hundredths = CustomRound(std::modf(rounded, &whole) * 100);
  QString text = whole < firstNotSpelled ? unitsInWords(qint64(whole))
                                         : QString::number(double(whole), 'f', 0) + u' ';
  if (Currency.isEmpty())
    text += whole == 1 ? QStringLiteral("лев") : QStringLiteral("лева");
  else
    text += Currency;
  text += andWord + QStringLiteral(".%1").arg(hundredths, 2, 10, QLatin1Char('0'));
  return Value < 0 ? QStringLiteral("минус ") + text : text;
}

}  // namespace kalvor
