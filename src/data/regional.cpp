// Numbers as Bulgarians write and read them.
#include "data/regional.h"

#include <algorithm>
#include <cmath>

namespace kalvor {

namespace {

// A decimal number as digits, so that rounding works on what people see and not on the binary value.
struct DecimalDigits {
  QString whole;     // without leading zeros
  QString fraction;
  bool negative = false;

  bool isZero() const { return whole.isEmpty() && std::ranges::all_of(fraction, [](QChar c) { return c == u'0'; }); }
};

DecimalDigits decimalDigits(double value)
{
  const QString text = QString::number(std::fabs(value), 'f', QLocale::FloatingPointShortest);
  const qsizetype point = text.indexOf(u'.');
  DecimalDigits digits;
  digits.whole = point < 0 ? text : text.left(point);
  digits.fraction = point < 0 ? QString() : text.mid(point + 1);
  digits.negative = std::signbit(value);
  if (digits.whole == u"0")
    digits.whole.clear();
  return digits;
}

void roundTo(DecimalDigits& digits, qsizetype places)
{
  if (digits.fraction.size() <= places)
    return;
  const bool up = digits.fraction[places] >= u'5';
  digits.fraction.truncate(places);
  if (!up)
    return;
  QString all = digits.whole + digits.fraction;
  qsizetype i = all.size() - 1;
  for (; i >= 0 && all[i] == u'9'; --i)
    all[i] = u'0';
  if (i >= 0)
    all[i] = QChar(all[i].unicode() + 1);
  else
    all.prepend(u'1');
  digits.whole = all.left(all.size() - places);
  digits.fraction = all.right(places);
}

bool isGroupBlank(QChar c)
{
  return c == u' ' || c == u'\u00A0' || c == u'\u202F' || c == regionalFormat().thousandSeparator;
}

QString grouped(const QString& whole)
{
  QString text;
  for (qsizetype i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0)
      text += regionalFormat().thousandSeparator;
    text += whole[i];
  }
  return text;
}

struct NumberPicture {
  QString before;   // literal text
  QString after;
  qsizetype wholeDigits = 0;      // that always show
  qsizetype fractionDigits = 0;   // that always show
  qsizetype fractionPlaces = 0;   // at most
  bool thousands = false;
  bool hasDigits = false;
};

QStringList pictureSections(const QString& picture)
{
  QStringList sections{QString()};
  QChar quote;
  for (QChar c : picture) {
    if (quote.isNull() && c == u';') {
      sections.append(QString());
      continue;
    }
    if (c == u'"' || c == u'\'')
      quote = quote.isNull() ? c : (quote == c ? QChar() : quote);
    sections.last() += c;
  }
  return sections;
}

NumberPicture parsePicture(const QString& section)
{
  NumberPicture picture;
  bool fraction = false;
  QChar quote;
  qsizetype wholePlaces = 0;
  qsizetype firstZero = -1;
  for (QChar c : section) {
    const bool isQuote = c == u'"' || c == u'\'';
    if (isQuote && (quote.isNull() || quote == c)) {
      quote = quote.isNull() ? c : QChar();
    } else if (quote.isNull() && (c == u'0' || c == u'#')) {
      picture.hasDigits = true;
      if (fraction) {
        ++picture.fractionPlaces;
        if (c == u'0')
          picture.fractionDigits = picture.fractionPlaces;
      } else {
        if (c == u'0' && firstZero < 0)
          firstZero = wholePlaces;
        ++wholePlaces;
      }
    } else if (quote.isNull() && c == u',') {
      picture.thousands = true;
    } else if (quote.isNull() && c == u'.' && !fraction) {
      fraction = true;
    } else {
      (picture.hasDigits ? picture.after : picture.before) += c;
    }
  }
  picture.wholeDigits = firstZero < 0 ? 0 : wholePlaces - firstZero;
  return picture;
}

QString applyPicture(const NumberPicture& picture, DecimalDigits digits)
{
  if (!picture.hasDigits)
    return picture.before;
  roundTo(digits, picture.fractionPlaces);
  while (digits.fraction.size() > picture.fractionDigits && digits.fraction.endsWith(u'0'))
    digits.fraction.chop(1);
  digits.fraction = digits.fraction.leftJustified(picture.fractionDigits, u'0');
  digits.whole = digits.whole.rightJustified(picture.wholeDigits, u'0');
  QString text = picture.before + (picture.thousands ? grouped(digits.whole) : digits.whole);
  if (!digits.fraction.isEmpty())
    text += regionalFormat().decimalSeparator + digits.fraction;
  return text + picture.after;
}

// The digits without group blanks; nothing when blanks stand where no thousands end.
std::optional<QString> withoutGroups(const QString& text)
{
  QString plain;
  qsizetype sinceBlank = -1;
  for (QChar c : text) {
    if (isGroupBlank(c)) {
      if (plain.isEmpty() || (sinceBlank >= 0 && sinceBlank != 3) || (sinceBlank < 0 && plain.size() > 3))
        return {};
      sinceBlank = 0;
    } else if (c >= u'0' && c <= u'9') {
      plain += c;
      if (sinceBlank >= 0)
        ++sinceBlank;
    } else {
      return {};
    }
  }
  if (sinceBlank >= 0 && sinceBlank != 3)
    return {};
  return plain;
}

struct SignedText {
  QString rest;
  bool negative = false;
};

SignedText splitSign(const QString& text)
{
  SignedText result{text.trimmed(), false};
  if (result.rest.startsWith(u'-') || result.rest.startsWith(u'\u2212')) {
    result.negative = true;
    result.rest = result.rest.mid(1).trimmed();
  } else if (result.rest.startsWith(u'+')) {
    result.rest = result.rest.mid(1).trimmed();
  }
  return result;
}

}  // namespace

RegionalFormat& regionalFormat()
{
  static RegionalFormat format;
  return format;
}

QString numberText(double value)
{
  if (!std::isfinite(value))
    return {};
  const DecimalDigits digits = decimalDigits(value);
  QString text = digits.whole.isEmpty() ? QStringLiteral("0") : digits.whole;
  if (!digits.fraction.isEmpty())
    text += regionalFormat().decimalSeparator + digits.fraction;
  return digits.negative && !digits.isZero() ? u'-' + text : text;
}

QString formatNumber(double value, const QString& picture)
{
  if (!std::isfinite(value))
    return {};
  const QStringList sections = pictureSections(picture);
  const NumberPicture positive = parsePicture(sections[0]);
  const DecimalDigits digits = decimalDigits(value);
  DecimalDigits rounded = digits;
  if (positive.hasDigits)
    roundTo(rounded, positive.fractionPlaces);
  if (rounded.isZero()) {
    const bool own = sections.size() > 2 && !sections[2].isEmpty();
    return applyPicture(own ? parsePicture(sections[2]) : positive, {});
  }
  if (!digits.negative)
    return applyPicture(positive, digits);
  if (sections.size() > 1 && !sections[1].isEmpty())
    return applyPicture(parsePicture(sections[1]), digits);
  return u'-' + applyPicture(positive, digits);
}

std::optional<double> parseNumber(const QString& text)
{
  const SignedText number = splitSign(text);
  const qsizetype point = number.rest.indexOf(regionalFormat().decimalSeparator);
  const std::optional<QString> whole = withoutGroups(point < 0 ? number.rest : number.rest.left(point));
  const QString fraction = point < 0 ? QString() : number.rest.mid(point + 1);
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  if (!whole || !std::ranges::all_of(fraction, isDigit) || (whole->isEmpty() && fraction.isEmpty()))
    return {};
  bool ok = false;
  const double value = QString(*whole + u'.' + fraction).toDouble(&ok);
  if (!ok || !std::isfinite(value))
    return {};
  return number.negative ? -value : value;
}

std::optional<qint64> parseInteger(const QString& text)
{
  const SignedText number = splitSign(text);
  const std::optional<QString> digits = withoutGroups(number.rest);
  if (!digits || digits->isEmpty())
    return {};
  bool ok = false;
  const qint64 value = QString(number.negative ? u'-' + *digits : *digits).toLongLong(&ok);
  return ok ? std::optional(value) : std::nullopt;
}

}  // namespace kalvor
