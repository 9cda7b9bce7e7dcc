#include "registry/selector_values.h"

#include <QRegularExpression>
#include <QScopedValueRollback>
#include <algorithm>
#include <cmath>
#include <optional>

#include "data/regional.h"
#include "forms/messages.h"
#include "platform/ports.h"

namespace kalvor {
namespace {

std::optional<double> numberInFormat(const QString& text, QChar decimalSeparator)
{
  QString plain;
  for (const QChar sign : text.trimmed()) {
    if (sign == decimalSeparator)
      plain += u'.';
    else if (sign == u'.')
      return std::nullopt;
    else if (!sign.isSpace())
      plain += sign;
  }
  bool ok = false;
  const double value = plain.toDouble(&ok);
  return ok ? std::optional(value) : std::nullopt;
}

// Day, month and year by their places in the picture: "dd.MM.yyyy" is "dmy".
QString dateOrder(const QString& picture)
{
  QString order;
  for (const QChar sign : picture.toLower())
    if ((sign == u'd' || sign == u'm' || sign == u'y') && !order.contains(sign))
      order += sign;
  return order.size() == 3 ? order : QStringLiteral("dmy");
}

// Parts of a date without separators ("20240131") by the widths in the picture ("yyyymmdd").
QStringList partsByWidth(const QString& text, const QString& picture)
{
  QStringList parts;
  const QString letters = picture.toLower();
  if (text.size() != letters.size())
    return parts;
  for (const QChar letter : dateOrder(picture))
    parts.append(text.mid(letters.indexOf(letter), letters.count(letter)));
  return parts;
}

std::optional<QDate> dateInFormat(const QString& text, const TFormatSettings& settings)
{
  constexpr int firstFullYear = 100;
  constexpr int century = 2000;
  QStringList parts = text.split(settings.DateSeparator, Qt::SkipEmptyParts);
  if (parts.size() == 1)
    parts = partsByWidth(text, settings.ShortDateFormat);
  QString order = dateOrder(settings.ShortDateFormat);
  if (parts.size() == 2)
    order.remove(u'y');
  if (parts.size() != order.size())
    return std::nullopt;
  const QDate today = systemClock().today();
  int year = today.year(), month = 0, day = 0;
  for (qsizetype i = 0; i < parts.size(); ++i) {
    bool ok = false;
    const int number = parts[i].trimmed().toInt(&ok);
    if (!ok)
      return std::nullopt;
    (order[i] == u'd' ? day : order[i] == u'm' ? month : year) = number;
  }
  const QDate date(year < firstFullYear ? century + year : year, month, day);
  return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QTime> timeInFormat(const QString& text)
{
  for (const char16_t* picture : {u"h:m:s.z", u"h:m:s", u"h:m"})
    if (const QTime time = QTime::fromString(text, QString::fromUtf16(picture)); time.isValid())
      return time;
  return std::nullopt;
}

QDate dayZero() { return QDate(1899, 12, 30); }

std::optional<QDateTime> dateTimeInFormat(const QString& text, const TFormatSettings& settings)
{
  static const QRegularExpression blanks(QStringLiteral("[\\sT]+"));
  const QString trimmed = text.trimmed();
  const qsizetype blank = trimmed.indexOf(blanks);
  const QString first = blank < 0 ? trimmed : trimmed.left(blank);
  if (blank < 0)
    if (const auto time = timeInFormat(first))
      return QDateTime(dayZero(), *time);
  const auto date = dateInFormat(first, settings);
  const auto time = blank < 0 ? std::optional(QTime(0, 0)) : timeInFormat(trimmed.mid(blank + 1).trimmed());
  return date && time ? std::optional(QDateTime(*date, *time)) : std::nullopt;
}

// Days since day zero, as spreadsheets keep them.
QDateTime dateTimeOfNumber(double days)
{
  constexpr double millisecondsOfDay = 86'400'000;
  const double whole = std::floor(days);
  const int rest = int(std::min((days - whole) * millisecondsOfDay + 0.5, millisecondsOfDay - 1));
  return QDateTime(dayZero().addDays(qint64(whole)), QTime::fromMSecsSinceStartOfDay(rest));
}

Variant asDateTime(const Variant& value, const TFormatSettings& settings)
{
  switch (value.typeId()) {
    case QMetaType::QDateTime: return value;
    case QMetaType::QDate: return QDateTime(value.toDate(), QTime(0, 0));
    case QMetaType::QTime: return QDateTime(dayZero(), value.toTime());
    case QMetaType::QString: break;
    default: return dateTimeOfNumber(value.toDouble());
  }
  if (const auto when = dateTimeInFormat(value.toString(), settings))
    return *when;
  throw DataError(_err_NotValidDate + value.toString());
}

}  // namespace

TFormatSettings::TFormatSettings() : DecimalSeparator(regionalFormat().decimalSeparator) {}

Variant ParseAsFieldType(const Variant& value, DataType fieldType, const TFormatSettings& settings)
{
  const bool isText = value.typeId() == QMetaType::QString;
  if (isNull(value) || (isText && value.toString().trimmed().isEmpty()))
    return value;
  if (isDateType(fieldType))
    return asDateTime(value, settings);
  if (!isText || (fieldType != DataType::Float && fieldType != DataType::Bcd))
    return value;
  if (const auto number = numberInFormat(value.toString(), settings.DecimalSeparator))
    return *number;
  throw DataError(_err_NotFloatValue);
}

int dataSetIndex(const TClientDataSet* dataSet)
{
  if (!dataSet || !dataSet->parent())
    return 0;
  return int(dataSet->parent()->findChildren<TClientDataSet*>(QString(), Qt::FindDirectChildrenOnly).indexOf(dataSet));
}

void setFieldAnyway(TField* field, const Variant& value)
{
  if (field->column() < 0)
    return;
  const QScopedValueRollback<bool> writable(field->ReadOnly, false);
  field->SetValue(value);
}

bool OurLocate(TClientDataSet* dataSet, const QString& fieldName, const QString& text)
{
  if (!dataSet->Active())
    dataSet->Open();
  const TField* field = dataSet->FieldByName(fieldName);
  const ControlsDisabledScope quiet(dataSet);
  for (dataSet->First(); !dataSet->Eof(); dataSet->Next())
    if (field->AsString() == text)
      return true;
  return false;
}

}  // namespace kalvor
