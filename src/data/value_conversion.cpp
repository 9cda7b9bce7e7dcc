#include "data/value_conversion.h"

#include <QDateTime>
#include <cmath>
#include <limits>

#include "data/regional.h"

namespace kalvor {

namespace {

constexpr qint64 millisecondsOfDay = 24LL * 60 * 60 * 1000;
constexpr qint64 julianDayOfEpoch = 2440588;

struct IntegerRange {
  qint64 lowest;
  qint64 highest;
};

IntegerRange rangeOf(DataType type)
{
  switch (type) {
    case DataType::SmallInt: return {-32768, 32767};
    case DataType::Word: return {0, 65535};
    case DataType::Integer:
    case DataType::AutoInc: return {std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()};
    default: return {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()};
  }
}

std::optional<double> realFromText(const QString& text, TextForm form)
{
  if (form == TextForm::Invariant) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (ok)
      return value;
  }
  return parseNumber(text);
}

std::optional<Variant> toReal(const Variant& value, TextForm form)
{
  std::optional<double> number;
  switch (value.typeId()) {
    case QMetaType::QString: number = realFromText(value.toString(), form); break;
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
    case QMetaType::QByteArray: break;
    default: {
      bool ok = false;
      const double converted = value.toDouble(&ok);
      if (ok)
        number = converted;
    }
  }
  if (!number || !std::isfinite(*number))
    return {};
  return Variant(*number);
}

std::optional<qint64> wholeNumber(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::QString: return parseInteger(value.toString());
    case QMetaType::Double:
    case QMetaType::Float: {
      const double rounded = std::round(value.toDouble());
      if (!(std::fabs(rounded) < 9.2e18))
        return {};
      return qint64(rounded);
    }
    case QMetaType::ULongLong:
      if (value.toULongLong() > quint64(std::numeric_limits<qint64>::max()))
        return {};
      break;
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
    case QMetaType::QByteArray: return {};
    default: break;
  }
  bool ok = false;
  const qint64 number = value.toLongLong(&ok);
  return ok ? std::optional(number) : std::nullopt;
}

std::optional<Variant> toInteger(DataType type, const Variant& value)
{
  const std::optional<qint64> number = wholeNumber(value);
  const IntegerRange range = rangeOf(type);
  if (!number || *number < range.lowest || *number > range.highest)
    return {};
  return Variant(*number);
}

std::optional<Variant> toBoolean(const Variant& value)
{
  if (value.typeId() != QMetaType::QString) {
    const std::optional<qint64> number = wholeNumber(value);
    return number ? std::optional<Variant>(*number != 0) : std::nullopt;
  }
  static const QStringList yes{QStringLiteral("1"), QStringLiteral("true"), QStringLiteral("да"), QStringLiteral("-1")};
  static const QStringList no{QStringLiteral("0"), QStringLiteral("false"), QStringLiteral("не")};
  const QString text = value.toString().trimmed();
  if (yes.contains(text, Qt::CaseInsensitive))
    return Variant(true);
  if (no.contains(text, Qt::CaseInsensitive))
    return Variant(false);
  return {};
}

std::optional<Variant> toDate(const Variant& value)
{
  QDate date;
  if (value.typeId() == QMetaType::QDate)
    date = value.toDate();
  else if (value.typeId() == QMetaType::QDateTime)
    date = value.toDateTime().date();
  else if (value.typeId() == QMetaType::QString) {
    const std::optional<QDateTime> when = parseDateTime(value.toString());
    if (when)
      date = when->date();
  }
  return date.isValid() ? std::optional<Variant>(date) : std::nullopt;
}

std::optional<Variant> toTime(const Variant& value)
{
  QTime time;
  if (value.typeId() == QMetaType::QTime)
    time = value.toTime();
  else if (value.typeId() == QMetaType::QDateTime)
    time = value.toDateTime().time();
  else if (value.typeId() == QMetaType::QString) {
    const QString text = value.toString().trimmed();
    for (const char16_t* picture : {u"h:m", u"h:m:s", u"h:m:s.z"}) {
      time = QTime::fromString(text, QString::fromUtf16(picture));
      if (time.isValid())
        break;
    }
  }
  return time.isValid() ? std::optional<Variant>(time) : std::nullopt;
}

std::optional<Variant> toDateTime(const Variant& value)
{
  std::optional<QDateTime> when;
  if (value.typeId() == QMetaType::QDateTime)
    when = value.toDateTime();
  else if (value.typeId() == QMetaType::QDate)
    when = QDateTime(value.toDate(), QTime(0, 0));
  else if (value.typeId() == QMetaType::QString)
    when = parseDateTime(value.toString());
  if (!when || !when->date().isValid())
    return {};
  return Variant(*when);
}

bool isNoDate(const Variant& value)
{
  switch (value.typeId()) {
    case QMetaType::QDate: return !value.toDate().isValid();
    case QMetaType::QTime: return !value.toTime().isValid();
    case QMetaType::QDateTime: return !value.toDateTime().date().isValid();
    default: return false;
  }
}

Variant toText(const Variant& value, TextForm form)
{
  if (form == TextForm::Invariant || value.typeId() == QMetaType::QString)
    return variantText(value);
  switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float: return numberText(value.toDouble());
    case QMetaType::QDate: return dateText(value.toDate());
    case QMetaType::QDateTime: return dateTimeText(value.toDateTime());
    default: return variantText(value);
  }
}

}  // namespace

std::optional<Variant> convertedValue(DataType type, const Variant& value, TextForm form)
{
  if (isNull(value) || isNoDate(value))
    return Variant();
  if (!isTextType(type) && type != DataType::Blob && value.typeId() == QMetaType::QString &&
      value.toString().trimmed().isEmpty())
    return Variant();
  switch (type) {
    case DataType::Float:
    case DataType::Currency:
    case DataType::Bcd: return toReal(value, form);
    case DataType::Boolean: return toBoolean(value);
    case DataType::Date: return toDate(value);
    case DataType::Time: return toTime(value);
    case DataType::DateTime:
    case DataType::TimeStamp: return toDateTime(value);
    case DataType::Blob:
      if (value.typeId() == QMetaType::QByteArray)
        return value;
      return value.typeId() == QMetaType::QString ? std::optional<Variant>(value.toString().toUtf8()) : std::nullopt;
    default: break;
  }
  if (isIntegerType(type))
    return toInteger(type, value);
  if (value.typeId() == QMetaType::QVariantList)
    return {};
  return toText(value, form);
}

QString userText(DataType type, const Variant& value)
{
  if (isNull(value))
    return {};
  if (type == DataType::Time)
    return value.toTime().toString(u"hh:mm:ss");
  return toText(value, TextForm::User).toString();
}

qint64 storedDate(QDate date)
{
  return date.toJulianDay();
}

qint64 storedTime(QTime time)
{
  return time.msecsSinceStartOfDay();
}

qint64 storedDateTime(DayAndTime when)
{
  return (when.date.toJulianDay() - julianDayOfEpoch) * millisecondsOfDay + when.time.msecsSinceStartOfDay();
}

QDate dateFromStored(qint64 value)
{
  return QDate::fromJulianDay(value);
}

QTime timeFromStored(qint64 value)
{
  return QTime::fromMSecsSinceStartOfDay(int(qBound<qint64>(0, value, millisecondsOfDay - 1)));
}

DayAndTime dayAndTime(qint64 value)
{
  qint64 day = value / millisecondsOfDay;
  qint64 rest = value % millisecondsOfDay;
  if (rest < 0) {
    --day;
    rest += millisecondsOfDay;
  }
  return {QDate::fromJulianDay(day + julianDayOfEpoch), QTime::fromMSecsSinceStartOfDay(int(rest))};
}

QDateTime dateTimeFromStored(qint64 value)
{
  const DayAndTime parts = dayAndTime(value);
  return QDateTime(parts.date, parts.time);
}

qint64 storedInteger(DataType type, const Variant& value)
{
  switch (type) {
    case DataType::Boolean: return value.toBool() ? 1 : 0;
    case DataType::Date: return storedDate(value.toDate());
    case DataType::Time: return storedTime(value.toTime());
    case DataType::DateTime:
    case DataType::TimeStamp: {
      const QDateTime when = value.toDateTime();
      return storedDateTime({when.date(), when.time()});
    }
    default: return value.toLongLong();
  }
}

Variant valueFromStored(DataType type, qint64 value)
{
  switch (type) {
    case DataType::Boolean: return value != 0;
    case DataType::Date: return dateFromStored(value);
    case DataType::Time: return timeFromStored(value);
    case DataType::DateTime:
    case DataType::TimeStamp: return dateTimeFromStored(value);
    default: return value;
  }
}

}  // namespace kalvor
