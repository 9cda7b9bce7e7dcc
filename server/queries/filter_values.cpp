#include "server/queries/filter_values.h"

#include <QDateTime>
#include <cmath>

namespace kalvor::server {

namespace {

std::optional<QDate> filterDate(QString text)
{
  if (text.size() == 6) {
    text.prepend(QLatin1StringView("20"));
  }
  const QDate date = text.size() == 8 ? QDate::fromString(text, QStringLiteral("yyyyMMdd")) : QDate();
  return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<Variant> filterMoment(const Variant& value)
{
  if (value.typeId() == QMetaType::QDate || value.typeId() == QMetaType::QDateTime) {
    return value;
  }
  const QString text = withoutQuotes(variantText(value)).trimmed();
  const qsizetype space = qMax(text.indexOf(u' '), text.indexOf(u'T'));
  const auto date = filterDate(text.left(space < 0 ? text.size() : space));
  if (!date || space < 0) {
    return date ? std::optional<Variant>(*date) : std::nullopt;
  }
  const QString clock = text.mid(space + 1).remove(u':');
  const QTime time = QTime::fromString(clock.size() == 4 ? clock + QStringLiteral("00") : clock, QStringLiteral("HHmmss"));
  return time.isValid() ? std::optional<Variant>(QDateTime(*date, time)) : std::nullopt;
}

std::optional<Variant> filterInteger(const Variant& value)
{
  if (value.typeId() == QMetaType::Double) {
    const double number = value.toDouble();
    return std::floor(number) == number && std::abs(number) < 9e18 ? std::optional<Variant>(qlonglong(number))
                                                                   : std::nullopt;
  }
  bool ok = false;
  const qlonglong number = withoutQuotes(variantText(value)).trimmed().toLongLong(&ok);
  return ok ? std::optional<Variant>(number) : std::nullopt;
}

std::optional<Variant> filterAmount(const Variant& value)
{
  bool ok = true;
  const double number = value.typeId() == QMetaType::QString
                            ? withoutQuotes(value.toString()).trimmed().toDouble(&ok) : value.toDouble(&ok);
  return ok && std::abs(number) < 9e12 ? std::optional<Variant>(number) : std::nullopt;
}

std::optional<Variant> filterFlag(const Variant& value)
{
  const QString text = withoutQuotes(variantText(value)).trimmed().toLower();
  if (text == u"1" || text == u"-1" || text == u"true") {
    return 1;
  }
  return text == u"0" || text == u"false" ? std::optional<Variant>(0) : std::nullopt;
}

}  // namespace

QString withoutQuotes(const QString& text)
{
  const QString trimmed = text.trimmed();
  if (trimmed.size() < 2 || !trimmed.startsWith(u'\'') || !trimmed.endsWith(u'\'')) {
    return text;
  }
  return trimmed.mid(1, trimmed.size() - 2).replace(QLatin1StringView("''"), QLatin1StringView("'"));
}

std::optional<Variant> filterValue(DataType type, const Variant& value)
{
  if (type == DataType::Boolean) {
    return filterFlag(value);
  }
  if (isIntegerType(type)) {
    return filterInteger(value);
  }
  if (isRealType(type)) {
    return filterAmount(value);
  }
  if (type == DataType::Date) {
    const auto moment = filterMoment(value);
    return moment ? std::optional<Variant>(moment->toDate()) : std::nullopt;
  }
  if (isDateType(type)) {
    return filterMoment(value);
  }
  const QString text = withoutQuotes(variantText(value));
  return isTextType(type) && !text.contains(QChar::Null) ? std::optional<Variant>(text) : std::nullopt;
}

std::optional<VariantArray> filterValueList(const Variant& value)
{
  if (value.typeId() == QMetaType::QVariantList) {
    VariantArray items = value.toList();
    items.removeIf([](const Variant& item) { return isNull(item); });
    return items;
  }
  QString text = variantText(value).trimmed();
  if (text.startsWith(u'(')) {
    text.remove(0, 1);
  }
  VariantArray items;
  for (qsizetype at = 0; at < text.size();) {
    if (text.at(at).isSpace() || text.at(at) == u',') {
      ++at;
      continue;
    }
    if (text.at(at) == u')') {
      return text.mid(at + 1).trimmed().isEmpty() ? std::optional(items) : std::nullopt;
    }
    qsizetype end = at;
    if (text.at(at) == u'\'') {
      for (end = text.indexOf(u'\'', at + 1); end >= 0 && text.mid(end + 1, 1) == u"'";) {
        end = text.indexOf(u'\'', end + 2);
      }
      if (end < 0) {
        return {};
      }
      items.append(withoutQuotes(text.mid(at, end + 1 - at)));
      at = end + 1;
      continue;
    }
    while (end < text.size() && text.at(end) != u',' && text.at(end) != u')') {
      ++end;
    }
    const QString item = text.mid(at, end - at).trimmed();
    if (item.compare(QLatin1StringView("null"), Qt::CaseInsensitive) != 0) {
      items.append(item);
    }
    at = end;
  }
  return items;
}

}  // namespace kalvor::server
