// The text forms in which filters are stored, and the joining of two filters.
#include <algorithm>

#include "common/delimited_list.h"
#include "data/regional.h"
#include "filters/filter_expression.h"
#include "session/error_log.h"

namespace kalvor {
namespace {

QString conjunctionSign(const QString& conjunction)
{
  const QString word = conjunction.trimmed();
  if (word.compare(QLatin1String("AND"), Qt::CaseInsensitive) == 0)
    return QStringLiteral("&");
  return word.compare(QLatin1String("OR"), Qt::CaseInsensitive) == 0 ? QStringLiteral("|") : QString();
}

QString signConjunction(QChar sign) { return sign == u'|' ? QStringLiteral("OR") : QStringLiteral("AND"); }

qsizetype nearestConjunction(const QString& text, qsizetype from)
{
  while (from < text.size() && text.at(from) != u'&' && text.at(from) != u'|')
    ++from;
  return from < text.size() ? from : -1;
}

FilterRow storedRow(const QString& text, const QString& conjunction, const ValueFunction& valueFunction)
{
  const QStringList items = text.split(u',');
  const QString value = items.value(2);
  return FilterRow{items.value(0), items.value(1), valueFunction ? valueFunction(value) : value, conjunction, {}};
}

// Where the text behind a conjunction goes on: past a "," that opens it.
qsizetype skipOpeningComma(const QString& text, qsizetype from)
{
  qsizetype at = from;
  while (at < text.size() && text.at(at).isSpace())
    ++at;
  return at < text.size() && text.at(at) == u',' ? at + 1 : from;
}

bool takesPart(const FilterArray& filter) { return !filter.isEmpty() && filter.first() != FilterRow(); }

void appendGroup(FilterArray& result, const FilterArray& filter, const QString& lastConjunction)
{
  const qsizetype first = result.size();
  result += filter;
  if (filter.size() > 1) {
    result[first].brackets.prepend(u'(');
    result.last().brackets.append(u')');
  }
  result.last().conjunction = lastConjunction;
}

enum VariantTypeCode : int {
  codeSmallInt = 2, codeInteger = 3, codeSingle = 4, codeDouble = 5, codeCurrency = 6, codeDate = 7, codeBoolean = 11,
  codeShortInt = 16, codeByte = 17, codeWord = 18, codeLongWord = 19, codeInt64 = 20
};

[[noreturn]] void refuseTypedValue(const QString& text)
{
  throw DataError(QStringLiteral("Некоректна стойност за филтър: %1").arg(text));
}

double typedNumber(const QString& text)
{
  bool ok = false;
  const double plain = text.toDouble(&ok);
  if (ok)
    return plain;
  const std::optional<double> value = parseNumber(text);
  return value ? *value : (refuseTypedValue(text), 0);
}

Variant typedValue(const QString& text, int code)
{
  switch (code) {
    case codeSmallInt: case codeInteger: case codeShortInt: case codeByte: case codeWord: case codeLongWord:
    case codeInt64: {
      if (text.trimmed().isEmpty())
        return {};
      const std::optional<qint64> value = parseInteger(text);
      return value ? Variant(qlonglong(*value)) : (refuseTypedValue(text), Variant());
    }
    case codeSingle: case codeDouble: case codeCurrency:
      return text.trimmed().isEmpty() ? Variant() : Variant(typedNumber(text));
    case codeDate: {
      if (text.trimmed().isEmpty())
        return {};
      const std::optional<QDateTime> value = parseDateTime(text);
      return value ? Variant(*value) : (refuseTypedValue(text), Variant());
    }
    case codeBoolean: {
      const QString word = text.trimmed().toLower();
      return word == QLatin1String("true") || word == QLatin1String("-1") || word == QLatin1String("1");
    }
    default: return text;
  }
}

FilterRow typedRow(const QString& part, const QString& separator, const QString& conjunction)
{
  QString value = GetItemAtPos(part, separator, 3);
  if (value.contains(QStringLiteral("<#")))
    value.clear();
  const int code = GetItemAtPos(part, separator, 2).trimmed().toInt();
  return FilterRow{GetItemAtPos(part, separator, 0), GetItemAtPos(part, separator, 1), typedValue(value, code),
                   conjunction, {}};
}

}  // namespace

QString BuildStrFilter(const FilterArray& filter)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.BuildStrFilter"), [&] {
    QString text;
    for (const FilterRow& row : filter)
      text += row.field + u',' + row.op + u',' + variantText(row.value) + u',' + conjunctionSign(row.conjunction);
    return text;
  });
}

FilterArray BuildFilterFromStr(const QString& text, const ValueFunction& valueFunction)
{
  return raisingLogged(QStringLiteral("uKalvorCommonUtils.BuildFilterFromStr"), [&] {
    FilterArray filter;
    if (GetItemsCountInList(text, QStringLiteral(",")) < 3)
      return filter;
    qsizetype from = 0;
    for (qsizetype end = nearestConjunction(text, from); end >= 0; end = nearestConjunction(text, from)) {
      const QString row = text.mid(from, qMax<qsizetype>(0, end - from - 1));
      filter.append(storedRow(row, signConjunction(text.at(end)), valueFunction));
      from = skipOpeningComma(text, end + 1);
    }
    if (const QString rest = text.mid(from); !rest.trimmed().isEmpty())
      filter.append(storedRow(rest, QString(), valueFunction));
    else if (!filter.isEmpty())
      filter.last().conjunction.clear();
    return filter;
  });
}

FilterArray GetFilterFromStr(const QString& text)
{
  FilterArray filter;
  if (text.trimmed().isEmpty())
    return filter;
  const QString rowSeparator = QStringLiteral("\\\\");
  const QString itemSeparator = QStringLiteral("/");
  const QStringList parts = text.split(rowSeparator).mid(0, GetItemsCountInList(text, rowSeparator));
  for (const QString& part : parts)
    filter.append(FilterRow{GetItemAtPos(part, itemSeparator, 0), GetItemAtPos(part, itemSeparator, 1),
                            GetItemAtPos(part, itemSeparator, 2), GetItemAtPos(part, itemSeparator, 3), {}});
  return filter;
}

void BuildFilterFromString(const QString& text, const QString& separator, FilterArray& filter)
{
  raisingLogged(QStringLiteral("KalvorUtils.BuildFilterFromString"), [&] {
    if (text.trimmed().isEmpty())
      return;
    FilterArray rows;
    qsizetype from = 0;
    for (qsizetype end = nearestConjunction(text, from); end >= 0; end = nearestConjunction(text, from)) {
      rows.append(typedRow(text.mid(from, end - from), separator, signConjunction(text.at(end))));
      from = end + 1;
    }
    filter = GetAllFilter(filter, rows);
  });
}

FilterArray GetAllFilter(const FilterArray& first, const FilterArray& second)
{
  return raisingLogged(QStringLiteral("CommonUtils.GetAllFilter"), [&] {
    FilterArray result;
    const bool withFirst = takesPart(first);
    if (takesPart(second))
      appendGroup(result, second, withFirst ? QStringLiteral("AND") : QString());
    if (withFirst)
      appendGroup(result, first, QString());
    return result;
  });
}

}  // namespace kalvor
