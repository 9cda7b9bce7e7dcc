#include "common/identifiers.h"

#include <QDate>
#include <QList>
#include <span>

namespace kalvor {
namespace {

using IdentifierDigits = QList<int>;

// What is added to the month of a birth in a century other than the twentieth.
struct BirthCentury {
  int monthOffset;
  int firstYear;
};
constexpr BirthCentury birthCenturies[] = {{0, 1900}, {20, 1800}, {40, 2000}};

constexpr int bulstatWeights[] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr int bulstatSecondWeights[] = {3, 4, 5, 6, 7, 8, 9, 10};
constexpr int branchWeights[] = {2, 7, 3, 5};  // of digits 9 to 12
constexpr int branchSecondWeights[] = {4, 9, 5, 7};
constexpr int taxNoWeights[] = {4, 3, 2, 7, 6, 5, 4, 3, 2};
constexpr int egnWeights[] = {2, 4, 8, 5, 10, 9, 7, 3, 6};

bool isIdentifierDigit(QChar c) { return c >= u'0' && c <= u'9'; }

IdentifierDigits digitsIn(const QString& text)
{
  IdentifierDigits digits;
  for (const QChar c : text)
    if (isIdentifierDigit(c))
      digits.append(c.unicode() - u'0');
  return digits;
}

// The text as ten digits; none when it is anything else.
IdentifierDigits tenDigits(const QString& text)
{
  const IdentifierDigits digits = digitsIn(text);
  return text.size() == 10 && digits.size() == 10 ? digits : IdentifierDigits();
}

int remainderOf(const IdentifierDigits& digits, qsizetype first, std::span<const int> weights)
{
  int sum = 0;
  for (size_t i = 0; i < weights.size(); ++i)
    sum += digits.at(first + qsizetype(i)) * weights[i];
  return sum % 11;
}

int checkDigit(const IdentifierDigits& digits, qsizetype first, std::span<const int> weights,
               std::span<const int> secondWeights)
{
  const int remainder = remainderOf(digits, first, weights);
  return remainder < 10 ? remainder : remainderOf(digits, first, secondWeights) % 10;
}

bool isBirthDate(int year, int month, int day)
{
  for (const BirthCentury& century : birthCenturies)
    if (QDate::isValid(century.firstYear + year, month - century.monthOffset, day))
      return true;
  return false;
}

}  // namespace

bool isCorrectBulstat(const QString& text)
{
  const IdentifierDigits d = digitsIn(text);
  if (d.size() != 9 && d.size() != 13)
    return false;
  if (checkDigit(d, 0, bulstatWeights, bulstatSecondWeights) != d.at(8))
    return false;
  return d.size() == 9 || checkDigit(d, 8, branchWeights, branchSecondWeights) == d.at(12);
}

bool isCorrectTaxNo(const QString& text)
{
  const IdentifierDigits d = tenDigits(text.trimmed());
  if (d.isEmpty())
    return false;
  const int remainder = remainderOf(d, 0, taxNoWeights);
  return remainder != 1 && (remainder == 0 ? 0 : 11 - remainder) == d.at(9);
}

bool isCorrectEGN(const QString& text)
{
  const IdentifierDigits d = tenDigits(text);
  if (d.isEmpty() || !isBirthDate(d.at(0) * 10 + d.at(1), d.at(2) * 10 + d.at(3), d.at(4) * 10 + d.at(5)))
    return false;
  return remainderOf(d, 0, egnWeights) % 10 == d.at(9);
}

}  // namespace kalvor
